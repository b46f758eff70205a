// A host for the MIF reader in C++: everything that an application needs to embed the reader. Including this header
// includes the whole interface. The simple case is three lines:
//
//   mifhost::FileStream stream("letter.mif");
//   mifhost::Document document(stream);
//   while (const mifhost::Token *token = document.next()) { ... }
//
// Conventions of all headers:
//  1. Failures are exceptions, all of them derived from mifhost::Error; a lack of heap memory in the host itself is
//     std::bad_alloc. No exception passes through the reader: what a callback meets is kept and thrown afterwards.
//  2. Objects are not synchronised. Objects that do not share a stream may be used by different threads at once; there
//     is no global state. A Plugin may be shared by documents of several threads.
//  3. What is passed by reference or as a view stays the caller's and must outlive the object that received it. What is
//     returned as a reference, pointer or view belongs to the object that returned it; a token is valid until the next
//     one is asked for.
//  4. What the reader knows by its address (Memory, Stream, Document, Object) can be neither copied nor moved.
//  5. Positions and sizes are bytes, measurements are twips (1440 to the inch), text is UTF-8 but
//     in raw tokens.
//  6. A document is smaller than 2 GiB.
#ifndef MIFHOST_MIFHOST_H
#define MIFHOST_MIFHOST_H

#include "mifhost/charset.h"
#include "mifhost/document.h"
#include "mifhost/error.h"
#include "mifhost/fonts.h"
#include "mifhost/memory.h"
#include "mifhost/object.h"
#include "mifhost/plugin.h"
#include "mifhost/stream.h"
#include "mifhost/token.h"

#endif
