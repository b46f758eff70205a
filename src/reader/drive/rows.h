// The making of rows for the tables of statements.
#ifndef MIFREADER_SRC_READER_DRIVE_ROWS_H
#define MIFREADER_SRC_READER_DRIVE_ROWS_H

#include <algorithm>

#include "formats/properties.h"
#include "reader/context.h"

template <auto group, auto flag>
uint32_t &insideFlag(MifContext &context)
{
    return context.*group.*flag;
}

template <size_t size>
constexpr MifStatementEntry row(const char (&name)[size], MifStatementHandler handler, uint32_t traits = 0)
{
    MifStatementEntry entry = {"", handler, nullptr, nullptr, nullptr, traits, nullptr};
    std::copy_n(name, size, entry.name);
    return entry;
}

// A statement whose start and end tags raise and lower a flag.
template <size_t size>
constexpr MifStatementEntry inside(const char (&name)[size], MifStatementHandler handler, MifInsideFlag flag,
                                   uint32_t traits = 0)
{
    MifStatementEntry entry = row(name, handler, traits | TRAIT_FLAG);
    entry.insideFlag = flag;
    return entry;
}

// A statement that sets a property, in the text and when a format that it is stored in is selected.
template <size_t size>
constexpr MifStatementEntry sets(const char (&name)[size], const MifProperty &direct, const MifProperty &stored,
                                 MifStatementHandler handler = mifSetDirectly)
{
    MifStatementEntry entry = row(name, handler);
    entry.direct = &direct;
    entry.stored = &stored;
    return entry;
}

template <size_t size>
constexpr MifStatementEntry sets(const char (&name)[size], const MifProperty &property)
{
    return sets(name, property, property);
}

#endif
