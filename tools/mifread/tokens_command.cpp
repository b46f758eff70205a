#include "command.h"
#include "mifconvert/token_listing.h"

namespace mifread
{

namespace
{

void listTokens(Conversion &conversion)
{
    mifconvert::TokenListing listing(conversion.document().fonts());
    while (const mifhost::Token *token = conversion.next()) {
        listing.append(*token, conversion.text());
    }
}

} // namespace

Command tokensCommand()
{
    return {.convert = listTokens, .extension = ".tokens"};
}

} // namespace mifread
