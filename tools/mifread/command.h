// The commands of mifread: what each makes of a document.
#ifndef MIFREAD_COMMAND_H
#define MIFREAD_COMMAND_H

#include <functional>
#include <string>
#include <string_view>

#include "conversion.h"
#include "options.h"

namespace mifread
{

// How the results of a command leave the program.
enum class Results {
    Joined, // in one output, one after the other, or each in a file of its own
    Single, // in one output there is room for one; several need files of their own
    Files   // files of the command's own in the document's folder, and a list of them in one output
};

struct Command {
    std::function<void(Conversion &)> convert; // called once for each document, from several threads at once
    Results results = Results::Joined;
    std::string_view extension{}; // of a result's file, with its dot
    std::string_view heading{};   // what an output begins with
};

// The document's text. forTerminal: what would command the terminal is escaped.
Command textCommand(bool forTerminal);

// A page that shows it.
Command htmlCommand(EmbedPictures pictures);

// Its token stream, one token a line, for people.
Command tokensCommand();

// How a list that is written looks.
enum class Listing {
    Rows,    // a line each, with a heading; names are escaped
    NulRows, // the same rows with names as they are, each ended by NUL, no heading
    Json     // a JSON object a line
};

// The data of its embedded objects, each in a file.
Command objectsCommand(Listing listing);

// Its token stream, one token a line, for programs. withObjects: the data of its objects as well.
Command jsonCommand(bool withObjects);

// What is in it, for people or for programs.
Command infoCommand(bool asJson);

} // namespace mifread

#endif
