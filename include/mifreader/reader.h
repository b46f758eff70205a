/* What the MIF reader hands to its host: the entry points that convert one document at a time into a token stream,
 * the table that holds them, and the operations that read embedded objects. The numbered conventions at the head of
 * host.h hold here too; tokens.h describes the stream itself.
 *
 * The order of calls for one document:
 *  1. mifGetReaderInterface, once after loading the library: libmifreader.so.0, or mifreader.dll on Windows.
 *  2. mifAllocateContext.
 *  3. mifInitDoc.
 *  4. mifFillBuffer again and again, until it returns 6 or reports 100 percent.
 *  5. mifFreeContext, after a failure too.
 * A context reads one document; there is no reset.
 */
#ifndef MIFREADER_READER_H
#define MIFREADER_READER_H

#include <stdint.h>

#include "mifreader/host.h"

/* The entry points are what the shared library exports; everything else in it is hidden. */
#if defined(_WIN32) && defined(MIF_BUILDING_SHARED)
#define MIF_API __declspec(dllexport)
#elif defined(__GNUC__)
#define MIF_API __attribute__((visibility("default")))
#else
#define MIF_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The state of one document. Opaque: made by mifAllocateContext, released by mifFreeContext. */
typedef struct MifContext MifContext;

/* Results of the entry points. No other value is returned. */
enum { MIF_SUCCESS = 0, MIF_FAILURE = 6 };

/* The character set of all text that the library writes: single-byte Windows-1252. */
enum { MIF_CHARSET_WINDOWS_1252 = 7 };

/* The entry table: 11 slots, which the host provides and mifGetReaderInterface fills. Each member is the function of
 * the same name below.
 */
typedef struct MifReaderInterface {
    /* Slot 0 */
    MifContext *(*mifAllocateContext)(void *cookie, HostNotify notify, uint32_t *result, HostServices *services,
                                      uint32_t unused);
    /* Slot 1 */
    int32_t (*mifFreeContext)(MifContext *context);
    /* Slot 2 */
    int32_t (*mifInitDoc)(MifContext *context, void *unused, int32_t size, HostStream *stream);
    /* Slot 3 */
    int32_t (*mifFillBuffer)(MifContext *context, uint8_t *buffer, uint32_t *bytesWritten, int32_t *percent,
                             uint32_t bufferSize);
    void *zeroSlots4To8[5];
    /* Slot 9 */
    int32_t (*mifCharSet)(void);
    void *zeroSlot10;
} MifReaderInterface;

/* Names the object that a file operation works on: at least 5 slots, of which the library reads two and writes none.
 * The handle and its name stay the host's and are needed only during each call.
 */
typedef struct MifFileHandle {
    void *hostSlots0To2[3];
    const char *name; /* slot 3: zero-terminated, the identifier that the object's TOKEN_FRAME carried; read by open */
    MifContext *context; /* slot 4: the document that the object belongs to, or null, which every operation refuses */
} MifFileHandle;

/* The origins of a file seek. */
enum { MIF_SEEK_START = 0, MIF_SEEK_CURRENT = 1, MIF_SEEK_END = 2 };

/* The operations that read an embedded object as if it were a file: 17 slots, sent to the host with
 * HOST_NOTIFY_FILE_ACCESS. The record itself is valid only during that call; the functions are valid as long as the
 * library is loaded.
 *
 * One object is open at a time in a context. Between opening an object and closing it the host must not call
 * mifFillBuffer for the same context: the document would go on where the object stands, and text would be missing
 * without a sign. At any other moment between two calls of mifFillBuffer an object may be opened: by the text that its
 * frame's token begins with, then read in blocks of 64 bytes or more until 0, and closed.
 */
typedef struct MifFileAccess {
    intptr_t words0To2[3]; /* slots 0 to 2: 3, 5 and -1, constants that the host framework asks for */
    void *zeroSlots3To7[5];

    /* Slot 8: opens the object that the handle names and puts its position at 0. Returns 1, or 0 when the handle has no
     * context or the document has no such object so far.
     */
    int32_t (*mifFileOpen)(MifFileHandle *handle);

    /* Slot 9: reads up to count bytes to destination, which must have room for count bytes and may be overwritten up to
     * there whatever the result. Returns the bytes delivered; 0 at the end, when the memory for it is refused, or when
     * count is 0 or less. Four bytes of the document's text are looked at for each byte wanted: a read of fewer than 64
     * bytes, or of data written in lines of a byte or two, can give 0 before the end.
     */
    int32_t (*mifFileRead)(MifFileHandle *handle, void *destination, int32_t count);

    void *zeroSlot10;

    /* Slot 11: moves the position by offset bytes from the start or from the current position (an offset below 0 moves
     * nothing), or to the end, where the offset is ignored. Returns 1, or 0 when there is no object.
     *
     * A seek to the end is for mifFileTell alone: reads go on where they were. What it tells can be too small or too
     * large, so that a host reads until 0. After a seek beyond the end, which leaves the position at 0 or where it was,
     * reads give 0. After a read that delivered fewer bytes than asked for a seek from the current position begins
     * after all that the read had looked at. A seek to the start puts all of this right.
     */
    int32_t (*mifFileSeek)(MifFileHandle *handle, int32_t offset, int32_t origin);

    /* Slot 12: returns the position in bytes, or -1 when there is no object. */
    int32_t (*mifFileTell)(MifFileHandle *handle);

    /* Slot 13: closes the object and puts the stream back to where the conversion goes on. Returns 1, or 0 when there
     * is no object.
     */
    int32_t (*mifFileClose)(MifFileHandle *handle);

    void *zeroSlots14To16[3];
} MifFileAccess;

/* Fills the host's entry table: clears its 11 slots and sets the five that the library offers.
 *   table  the record to fill
 */
MIF_API void mifGetReaderInterface(MifReaderInterface *table);

/* Makes the context of one document.
 *   cookie    passed back with every notification; may be null
 *   notify    the notification callback; null when the host wants none
 *   result    receives 1, also when the allocation fails
 *   services  the memory that this document is to use
 *   unused    ignored
 * Returns the context, which the host releases with mifFreeContext, or null when memory is exhausted.
 */
MIF_API MifContext *mifAllocateContext(void *cookie, HostNotify notify, uint32_t *result, HostServices *services,
                                       uint32_t unused);

/* Binds a new context to the document to convert, once, and sends HOST_NOTIFY_FILE_ACCESS.
 *   context  null gives 6
 *   unused   ignored; may be null
 *   size     the document's size in bytes; 0 when not known: it is then measured by seeking to the end and back to the
 *            start. With any other value the stream is not touched and must stand at its start
 *   stream   the document's text
 * Returns 0, or 6 when memory is exhausted or the size is negative or not below 2 GiB; after a 6 only mifFreeContext
 * may follow.
 */
MIF_API int32_t mifInitDoc(MifContext *context, void *unused, int32_t size, HostStream *stream);

/* Converts the next piece of the document.
 *   context       a context for which mifInitDoc returned 0
 *   buffer        receives whole tokens, one after the other; never written beyond bufferSize
 *   bytesWritten  receives the number of bytes written
 *   percent       receives how much of the document has been read, 0 to 100; 100 means that nothing is left
 *   bufferSize    the size of buffer in bytes, the same or another one in each call. A call stops taking up text once
 *                 nine tenths are used; the buffer must hold the largest single token, and 64 KB hold every one that an
 *                 ordinary document gives
 * Returns 0: take the tokens and call again unless percent is 100. Or 6: the document is not MIF (bytesWritten and
 * percent are then not stored), memory is exhausted, or a token is larger than the whole buffer. What was written
 * before the failure is whole. Both ends are final: every further call, with whatever buffer, gives 0 and 100 percent,
 * or 6, and 0 bytes.
 *
 * Memory that is refused for a record other than a statement or a waiting token (host.h, allocate) is no failure: the
 * document goes on without the record, and no result tells it.
 */
MIF_API int32_t mifFillBuffer(MifContext *context, uint8_t *buffer, uint32_t *bytesWritten, int32_t *percent,
                              uint32_t bufferSize);

/* Gives everything that the document still holds back to the host's memory services, the context included.
 *   context  null gives 6
 * Returns 0, or 6 for null. The context and all names of its objects are invalid afterwards.
 */
MIF_API int32_t mifFreeContext(MifContext *context);

/* Returns the character set of the text, MIF_CHARSET_WINDOWS_1252. May be called at any time, without a context. */
MIF_API int32_t mifCharSet(void);

#ifdef __cplusplus
}
#endif

#endif
