// make_seeds FOLDER DOCUMENT...: the seed corpus, made from documents: FOLDER/reader, objects, tokens and html.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "session.h"

namespace fs = std::filesystem;

namespace
{

// Documents are cut into pieces, because a fuzzer is quick with short inputs. Long ones only repeat themselves.
constexpr size_t pieceSize = 3000;
constexpr size_t mostPieces = 10;

// What makes a piece from the middle of a document one that is converted, and anchors for the frames in it.
constexpr std::string_view beginning = "<MIFFile 5.50>\n<Page <PageType BodyPage> <TextRect <ID 9> > >\n<TextFlow "
                                       "<TextRectID 9>\n";
constexpr std::string_view anchors = "\n>>>>\n<AFrame 1><AFrame 2><AFrame 3><AFrame 6><AFrame 12>\n";

// Plans: one byte at a time into the smallest buffers; with objects read between; a stretch that grows; nothing
// special.
constexpr std::string_view readerPlans[] = {
    {"\xFF\xFF\0\0\0\0\0\0\1\1\1\1\0\0\0\0\0\0\0\0", 20},
    {"\xFF\xFF\0\0\x80\0\0\0\1\7\0\x61\x01\xFD\x21\x40\0\0\0\0", 20},
    {"\x40\0\0\x0F\x20\0\3\0\1\0\0\0\0\0\0\0\0\0\0\0", 20},
    {"\xFF\xFF\0\0\0\x10\0\x10\0\0\0\0\0\0\0\0\0\0\0\0", 20},
};

// Fills and then opens, reads, seeks, tells and closes.
constexpr std::string_view objectsPlan = {
    "\7\7\7\0\0\0\1\x64\0\5\3\x0A\0\1\x40\0\5\x0B\x0A\0\2\x64\0\x13\0\0\5\6"
    "\0\1\0\1\0\1\1\0\1\1\0\1\6\7\0\2\0\2\x40\0\2\x40\0\5\6\0\0\0\0\0\0\0\0\0\0\0",
    64};

std::string read(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const fs::path &path, std::string_view content)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

void makeSeeds(const fs::path &folder, const fs::path &path)
{
    const std::string whole = read(path);
    for (size_t piece = 0; piece < mostPieces && piece * pieceSize < whole.size(); ++piece) {
        std::string document(piece == 0 ? std::string_view() : beginning);
        document.append(whole, piece * pieceSize, pieceSize);
        const std::string_view readerPlan = readerPlans[piece % std::size(readerPlans)];
        for (const bool isExtended : {false, true}) {
            const std::string name = path.stem().string() + std::to_string(piece) + (isExtended ? "x" : "");
            const std::string plan(1, isExtended ? '\1' : '\0');
            write(folder / "reader" / name, document + plan + std::string(readerPlan));
            const std::string anchored = document + std::string(anchors);
            write(folder / "objects" / name, anchored + plan + std::string(objectsPlan));
            const miffuzz::Conditions conditions{.isExtended = isExtended};
            miffuzz::Session session(anchored, conditions);
            session.fillAll();
            write(folder / "tokens" / name, session.stream());
            write(folder / "html" / name, session.stream());
        }
    }
}

} // namespace

int main(int count, char **arguments)
{
    if (count < 3) {
        std::fputs("usage: make_seeds FOLDER DOCUMENT...\n", stderr);
        return 2;
    }
    std::for_each(arguments + 2, arguments + count, [&](const char *path) { makeSeeds(arguments[1], path); });
    return 0;
}
