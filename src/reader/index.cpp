#include "reader/index.h"

#include <algorithm>
#include <cstring>

namespace
{

// A key is read as 9 bits a byte: a 1 for a byte that is there, then the byte from its highest bit on. After its end a
// key is all zeros, so that no key is the beginning of another. Bits are counted from 1.
constexpr uint32_t bitsPerByte = 9;

uint32_t codedByte(const char *key, size_t length, size_t index)
{
    return index < length ? 0x100U | static_cast<unsigned char>(key[index]) : 0;
}

uint32_t bitOf(const char *key, size_t length, uint32_t bit)
{
    const uint32_t index = bit - 1;
    return codedByte(key, length, index / bitsPerByte) >> (bitsPerByte - 1 - index % bitsPerByte) & 1;
}

bool sameKey(const MifIndexNode &node, const char *key, size_t length)
{
    return node.keyLength == length && memcmp(node.key, key, length) == 0;
}

// The first bit in which two different keys differ.
uint32_t differingBit(const MifIndexNode &node, const char *key, size_t length)
{
    const size_t common = std::min<size_t>(node.keyLength, length);
    size_t index = 0;
    while (index < common && node.key[index] == key[index]) {
        ++index;
    }
    uint32_t bit = static_cast<uint32_t>(index) * bitsPerByte + 1;
    while (bitOf(node.key, node.keyLength, bit) == bitOf(key, length, bit)) {
        ++bit;
    }
    return bit;
}

} // namespace

// The only record that can have that key; the index must not be empty.
const MifIndexNode *MifIndex::search(const char *key, size_t length) const
{
    const MifIndexNode *parent = root_;
    const MifIndexNode *node = root_->children[0];
    while (node->bit > parent->bit) {
        parent = node;
        node = node->children[bitOf(key, length, node->bit)];
    }
    return node;
}

MifIndexNode *MifIndex::find(const char *key, size_t length) const
{
    if (root_ == nullptr) {
        return nullptr;
    }
    const MifIndexNode *node = search(key, length);
    return sameKey(*node, key, length) ? const_cast<MifIndexNode *>(node) : nullptr;
}

void MifIndex::insert(MifIndexNode *node, const char *key, size_t length)
{
    node->key = key;
    node->keyLength = static_cast<uint32_t>(length);
    if (root_ == nullptr) {
        node->bit = 0;
        node->children[0] = node;
        root_ = node;
        return;
    }
    const MifIndexNode *nearest = search(key, length);
    if (sameKey(*nearest, key, length)) {
        return;
    }
    node->bit = differingBit(*nearest, key, length);
    // The node goes in where the bits on the way pass its own.
    MifIndexNode **link = &root_->children[0];
    uint32_t passed = 0;
    while ((*link)->bit > passed && (*link)->bit < node->bit) {
        passed = (*link)->bit;
        link = &(*link)->children[bitOf(key, length, passed)];
    }
    const uint32_t own = bitOf(key, length, node->bit);
    node->children[own] = node;
    node->children[1 - own] = *link;
    *link = node;
}

void MifIndex::clear()
{
    root_ = nullptr;
}
