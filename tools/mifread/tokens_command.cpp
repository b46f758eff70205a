#include "command.h"
#include "conversion.h"
#include "token_listing.h"

namespace mifread
{

namespace
{

bool listTokens(mifhost::Document &document, OutputFile &output)
{
    TokenListing listing(document.fonts());
    while (const mifhost::Token *token = document.next()) {
        listing.append(*token, output.text());
        output.writeFullBlocks();
    }
    return true;
}

} // namespace

ExitCode runTokens(const Options &options)
{
    return convertInputs(options, listTokens);
}

} // namespace mifread
