// Finding a record by its key in time that depends on the key's length alone, whatever keys a document chooses.
#ifndef MIFREADER_SRC_READER_INDEX_H
#define MIFREADER_SRC_READER_INDEX_H

#include <cstddef>
#include <cstdint>

// A record that an index holds derives from this. The key is bytes of the record's own, which must not change while it
// is in the index.
struct MifIndexNode {
    const char *key;
    uint32_t keyLength;
    uint32_t bit; // the bit of a key that chooses the child; 0 in the first record, which has only child 0
    MifIndexNode *children[2];
};

// A binary trie over the bits of the keys in which every record is a node of its own (a Patricia tree): a child whose
// bit is not larger than its parent's leads back to a record, as the result of the search. A cleared index is empty. It
// does not own its records.
class MifIndex
{
public:
    // The record with that key, or null.
    MifIndexNode *find(const char *key, size_t length) const;

    // Takes the record up unless one with the same key is there already: the first one wins.
    void insert(MifIndexNode *node, const char *key, size_t length);

    void clear();

private:
    const MifIndexNode *search(const char *key, size_t length) const;

    MifIndexNode *root_;
};

#endif
