/* What a host hands to the MIF reader: memory, an input stream and a notification callback.
 *
 * Conventions, for this header and for reader.h and tokens.h:
 *  1. Everything is C. No C++ type crosses the boundary and no exception leaves the library.
 *  2. Records are laid out in pointer-sized slots, 4 bytes each on a 32-bit build and 8 on a 64-bit one, so that a
 *     host compiled apart from the library can fill and read them. A slot is numbered from 0.
 *  3. Slots named hostSlots belong to the host. The library neither reads nor writes them in a record that it
 *     receives, and leaves them zero in a record that it fills.
 *  4. Positions and sizes of documents are bytes in signed 32 bits: a document is smaller than 2 GiB. All measurements
 *     that leave the library are twips, 1440 to the inch.
 *  5. Pointers must be valid and not null unless a declaration says what null means.
 *  6. A record passed to the library stays the host's. Unless a declaration says otherwise the library keeps the
 *     address until mifFreeContext, so the record must live as long as the context.
 *  7. The library runs on the thread that calls it, starts no threads and takes no locks. Two contexts are independent
 *     of each other; one context must not be used by two threads at once. The callbacks below are called only from
 *     within a library call, on its thread, and must not call back into the same context.
 *  8. The library trusts its host to call in order and with valid pointers. It does not trust what comes through the
 *     stream: no document and no stream behaviour makes it fail in any way but a result of 6.
 */
#ifndef MIFREADER_HOST_H
#define MIFREADER_HOST_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The host's memory services: 42 slots, of which the library uses four. Every byte that the library allocates, the
 * context included, comes from here.
 */
typedef struct HostServices {
    void *hostSlots0To36[37];

    /* Slot 37: the host's own. The library passes the address of this member, and never its content, as the first
     * argument of the three operations.
     */
    void *memoryHandleArea;

    /* Slot 38: returns size bytes (at least 1) aligned for any C type, their content unspecified, or null when memory
     * is exhausted. The library owns them until it passes them to free.
     *
     * A refusal ends the conversion with 6 when it meets a statement or a token that has to wait. When it meets another
     * record (a format, a number, a text rectangle, a table, a frame ...) the conversion goes on without that, to a
     * result of 0 with pieces of the document missing: a host that must know counts the nulls it returns, here and in
     * allocateZeroed.
     */
    void *(*allocate)(void *handleArea, size_t size);

    /* Slot 39: takes back a block that one of the two allocating operations returned. Never called with null. */
    void (*free)(void *handleArea, void *block);

    void *hostSlot40;

    /* Slot 41: like allocate for count times size bytes, all cleared to zero. The library always passes a count of 1.
     */
    void *(*allocateZeroed)(void *handleArea, size_t count, size_t size);
} HostServices;

/* The host's input stream over one document: 13 slots, of which the library uses three. The stream must be able to
 * seek. Between two library calls the host may read and move it only if it puts it back where it was.
 */
typedef struct HostStream {
    void *hostSlots0To8[9];

    /* Slot 9: reads up to count bytes (at least 1) to destination and moves the position past them. Returns the number
     * of bytes delivered; fewer than count is not an error and 0 means the end of the data. A result above count (an
     * error value such as (size_t)-1) counts as 0 bytes.
     */
    size_t (*read)(struct HostStream *stream, void *destination, size_t count);

    void *hostSlot10;

    /* Slot 11: moves the position to offset bytes from the start (origin 0) or from the end (origin 2). */
    void (*seek)(struct HostStream *stream, intptr_t offset, int32_t origin);

    /* Slot 12: returns the current position in bytes from the start. */
    intptr_t (*tell)(struct HostStream *stream);
} HostStream;

/* Codes of a notification. */
enum {
    /* data is a MifFontRecord: a font family met in the document. The callback returns the number of the font in its
     * output, counted from 1, or 0 when it has none.
     */
    HOST_NOTIFY_FONT = 1,
    /* data is a MifFileAccess (reader.h): the operations through which embedded objects are read. Sent once for each
     * document, from mifInitDoc; the result is ignored.
     */
    HOST_NOTIFY_FILE_ACCESS = 2
};

/* The host's notification callback.
 *   cookie  the value that the host gave to mifAllocateContext; may be null
 *   code    one of the codes above
 *   data    the record that the code calls for, never null and valid only during the call: the host copies what it
 * needs
 *
 * Returns what the code asks for.
 */
typedef uint32_t (*HostNotify)(void *cookie, uint32_t code, void *data);

/* Family classes of MifFontRecord, in the upper half of its byte as the GDI font families are. */
enum {
    MIF_FONT_CLASS_UNKNOWN = 0x00,
    MIF_FONT_CLASS_ROMAN = 0x10,
    MIF_FONT_CLASS_SWISS = 0x20,
    MIF_FONT_CLASS_MODERN = 0x30,
    MIF_FONT_CLASS_SCRIPT = 0x40,
    MIF_FONT_CLASS_DECORATIVE = 0x50
};

/* A font family announced to the host: 60 bytes on every platform, the layout of the Windows GDI record LOGFONTA. */
typedef struct MifFontRecord {
    uint8_t zeros[27];   /* bytes 0 to 26, always zero */
    uint8_t familyClass; /* byte 27, one of the classes above */
    char faceName[32];   /* bytes 28 to 59: at most 31 characters of the family name, the rest zero */
} MifFontRecord;

#ifdef __cplusplus
}
#endif

#endif
