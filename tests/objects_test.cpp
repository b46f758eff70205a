// Embedded objects: what the scan records of them, and the reading of their data.
#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "frames/imported_objects.h"
#include "reader/context.h"
#include "support/test_host.h"

using namespace miftest;

using namespace std::string_literals;

namespace
{

std::string frame(const std::string &id, const std::string &object)
{
    return "<Frame <ID " + id + ">\n <ShapeRect  1.0\" 0.5\" 2.0\" 1.5\">\n <ImportObject \n" + object +
           "> > # Frame\n";
}

const std::string hexFacet = "=Image\n&%k\n&\\x\n&000102030405060708090A0b0c0D0E0f\n&\\x\n=EndInset\n";
const std::string hexBytes("\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16\17", 16);

// A document that is open, to look between its fill calls.
class OpenDocument
{
public:
    explicit OpenDocument(const std::string &document, const Conditions &conditions = {})
        : host_(document, conditions), context_(host_.open())
    {
        conversion_.result = mifInitDoc(context_, nullptr, 0, host_.stream());
        EXPECT_EQ(conversion_.result, 0);
    }
    OpenDocument(const OpenDocument &) = delete;
    OpenDocument &operator=(const OpenDocument &) = delete;

    ~OpenDocument()
    {
        host_.close(context_);
    }

    bool fill()
    {
        if (conversion_.result != 0 || conversion_.percent == 100) {
            return false;
        }
        host_.fill(context_, conversion_);
        return true;
    }

    void fillAll()
    {
        while (fill()) {
        }
    }

    const MifFileAccess &access() const
    {
        return host_.fileAccesses.at(0);
    }

    MifFileHandle handle(const char *id) const
    {
        MifFileHandle handle{};
        handle.name = id;
        handle.context = context_;
        return handle;
    }

    // The whole object, read in blocks; nothing when it cannot be opened.
    std::optional<std::string> read(const char *id, int32_t block)
    {
        MifFileHandle file = handle(id);
        if (access().mifFileOpen(&file) == 0) {
            return std::nullopt;
        }
        std::string bytes;
        std::string buffer(static_cast<size_t>(block), '\0');
        for (int32_t count = block; count == block;) {
            count = access().mifFileRead(&file, buffer.data(), block);
            bytes.append(buffer, 0, static_cast<size_t>(count));
        }
        EXPECT_EQ(access().mifFileTell(&file), static_cast<int32_t>(bytes.size()));
        EXPECT_EQ(access().mifFileClose(&file), 1);
        return bytes;
    }

    const MifFrameRecord *frame(int32_t id) const
    {
        const MifFrameRecord *record = context_->frames.frameList.head;
        while (record != nullptr && record->id != id) {
            record = record->next;
        }
        return record;
    }

    const Conversion &conversion() const
    {
        return conversion_;
    }

    TestHost &host()
    {
        return host_;
    }

private:
    TestHost host_;
    MifContext *context_;
    Conversion conversion_;
};

std::string framesDocument(const std::string &frames)
{
    return documentOf("<AFrames\n" + frames + ">\n<String `a'><AFrame 5><String `b'>");
}

} // namespace

TEST(Objects, TheScanFindsTheFirstFacet)
{
    struct Case {
        const char *what;
        std::string object;
        const char *facet;
        int32_t length;
        std::string bytes;
    };
    const Case cases[] = {
        {"hexadecimal", hexFacet, "Image", 16, hexBytes},
        {"literal", "=A\n&ab\\\\c\n&\\\\\\\\\n=EndInset\n", "A", 6, "ab\\c\\\\"},
        {"both in one line", "=A\n&ab\\x4344\\xef\n=EndInset", "A", 6, "abCDef"},
        {"an odd digit is dropped", "=A\n&\\x\n&414\n&42\n=EndInset\n", "A", 2, "AB"},
        {"the second facet is not counted", "=A\n&x\n=B\n&y>>\n&z\n=EndInset\n", "A", 1, "x"},
        {"a further percent line is data", "=A\n&%v\n&x\n&%yz\n=EndInset\n", "A", 3, "x%yz"},
        {"an equals sign ends the data", "=A\n&ab=c>>>\n&d\n=EndInset\n", "A", 2, "ab"},
        {"statements and brackets in data", " <ImportObFixed Yes>\n <X `<\\>'>\n=A\n&<<>\n=EndInset\n", "A", 3, "<<>"},
        {"a backslash before another character", "=A\n&a\\b\n&c\\d\n=EndInset\n", "A", 6, "a\\bc\\d"},
        {"closing brackets in data", "=A\n&>>x\n&>y\n=EndInset\n", "A", 5, ">>x>y"},
        {"brackets at the ends of lines", "=A\n&a\n&b<\n&c<\n=EndInset\n", "A", 5, "ab<c<"},
        {"an inset behind the inset", "=A\n&x\n=EndInset\n=B\n&>>y\n=EndInset\n", "A", 1, "x"},
        {"the inset ends on the line of the data", "=A\n&ab=EndInset\n", "A", 2, "ab"},
        {"an odd digit before an escape", "=A\n&\\x414\\xab\n&c\\\\d\n=EndInset\n", "A", 6, "Aabc\\d"},
        {"the rest of a marker's line", "=A\n&%v >>> =B\n&x\n=EndInset\n", "A", 1, "x"},
        {"data behind the inset alone", "=A\n=EndInset\n&x\n=EndInset\n", "A", 1, "x"},
        {"the characters of a name", " <X `R&D=1.png'> <Y `a=b'>\n <Z a%&>\n\t =A\n \t&x\n=EndInset\n", "A", 1, "x"},
        {"an odd digit before the end", "=A\n&\\x414=EndInset\n", "A", 1, "A"},
        {"a marker without a character", "=A\n&%\n&x\n=EndInset\n", "A", 1, "x"},
        {"CR LF", "=A\r\n&ab\r\n&cd\r\n=EndInset\r\n", "A", 4, "abcd"},
    };
    for (const Case &test : cases) {
        OpenDocument document(framesDocument(frame("5", test.object)));
        document.fillAll();
        const MifFrameRecord *record = document.frame(5);
        ASSERT_NE(record, nullptr) << test.what;
        EXPECT_STREQ(record->facetName, test.facet) << test.what;
        EXPECT_EQ(record->object.dataLength, test.length) << test.what;
        EXPECT_EQ(bodyListing(document.conversion()),
                  "text \"a\"\nframe id=\"5\" width=2880 height=2160 kind=2\ntext \"b\"\n")
            << test.what;
        EXPECT_EQ(document.read("5", 4096), test.bytes) << test.what;
    }
}

// The places that would swallow text or stand still if they were read carelessly.
TEST(Objects, NothingBehindAnObjectIsLost)
{
    const std::string anchored = "text \"a\"\nframe id=\"5\" width=2880 height=2160 kind=2\ntext \"b\"\n";
    const std::string alone = "text \"a\"\ntext \"b\"\n";
    const auto tokens = [](const std::string &frames) { return bodyListing(convert(framesDocument(frames))); };
    EXPECT_EQ(tokens(frame("5", " <ImportObFileDI `<c\\>img<c\\>logo.png'>\n")), alone) << "by reference";
    EXPECT_EQ(tokens(frame("4", " <ImportObFileDI `<c\\>img<c\\>R&D=1.png'>\n") + frame("5", hexFacet)), anchored);
    EXPECT_EQ(tokens(frame("5", " <X `a=b'>\n <Y `c&d'> <Z 1>\n" + hexFacet)), anchored);
    EXPECT_EQ(tokens(frame("4", " <X 1> =EndInset\n") + frame("5", hexFacet)), anchored)
        << "the end behind a statement";
    EXPECT_EQ(tokens(frame("4", " <X `a=<b>'>\n") + frame("5", hexFacet)), anchored) << "brackets in a value";
    EXPECT_EQ(tokens("<Frame <ID 4> <ImportObject <X a&b>>>" + frame("5", hexFacet)), anchored) << "closed in a value";
    EXPECT_EQ(tokens(frame("4", "") + "= stray <\n& stray <\n" + frame("5", hexFacet)), anchored) << "between frames";
    EXPECT_EQ(tokens("<Frame <ID 5> <ImportObject <X 1>>><Frame <ID 6>>"), alone) << "all in one line";
    EXPECT_EQ(tokens("<Frame <ID 5> <ImportObject <Hint a&%> <X y>>>"), alone) << "a marker in a statement";
    EXPECT_EQ(
        bodyListing(convert("<MIFFile 5><Page <PageType BodyPage> <TextRect <ID 9>>>\n<AFrames <Frame <ID 5> "
                            "<ImportObject\n=A\n&ab=EndInset>>> <TextRectID 9><String `a'><AFrame 5><String `b'>")),
        "text \"a\"\nframe id=\"5\" width=0 height=0 kind=2\ntext \"b\"\n")
        << "no line end behind the data";
    EXPECT_EQ(tokens("<ImportObject\n" + hexFacet + ">"), alone) << "no frame at all";
    EXPECT_EQ(tokens("<Page <Frame <ImportObject\n" + hexFacet + ">>>"), alone) << "on a page";

    for (const std::string &end : {std::string("=A\n&ab"), std::string("=A\n&ab\n"), std::string("=A"),
                                   std::string(" <X"), std::string("=EndInset"), std::string("=A\n&\\")}) {
        const Conversion conversion =
            convert(documentOf("<String `a'>") + "<AFrames <Frame <ID 5> <ImportObject\n" + end);
        EXPECT_EQ(conversion.result, 0) << end;
        EXPECT_EQ(conversion.percent, 100) << end;
    }
}

// The record of an object does not depend on where the stretches end.
TEST(Objects, OneRecordWhereverTheStretchesEnd)
{
    const std::string object = " <ImportObFixed Yes>\n <ImportObFileDI `<c\\>R&D=1.png'> <More `<x\\>'>\n" + hexFacet;
    for (const std::string &content : {object, "=Face t\n&%v\n&li\\\\t\n&\\x41\n&42\\xend\n=Two\n&>>>\n=EndInset\n"s}) {
        const std::string plain = framesDocument(frame("5", content));
        OpenDocument expected(plain);
        expected.fillAll();
        const auto check = [&](const std::string &text, const Conditions &conditions) {
            OpenDocument document(text, conditions);
            document.fillAll();
            const MifFrameRecord *record = document.frame(5);
            const MifFrameRecord *wanted = expected.frame(5);
            ASSERT_NE(record, nullptr);
            EXPECT_STREQ(record->facetName, wanted->facetName);
            EXPECT_EQ(record->object.dataLength, wanted->object.dataLength);
            EXPECT_EQ(record->object.kind, wanted->object.kind);
            EXPECT_EQ(record->width, 2880);
            EXPECT_TRUE(document.conversion().stream == expected.conversion().stream);
            EXPECT_EQ(document.read("5", 64), expected.read("5", 4096));
        };
        for (size_t bytes = 1; bytes < 300; ++bytes) {
            check(plain, {.bytesPerRead = bytes});
        }
        for (size_t shift = 3500; shift < 4090; ++shift) {
            check(framesDocument("#" + std::string(shift, 'c') + "\n" + frame("5", content)), {});
        }
    }
}

TEST(Objects, AReadWithoutMemoryLeavesTheStreamWhereTheDocumentGoesOn)
{
    const std::string text = framesDocument(frame("5", hexFacet) + "#" + std::string(9000, 'c'));
    OpenDocument document(text, {.bufferSize = 38});
    document.fill();
    document.fill();
    const intptr_t position = document.host().stream()->tell(document.host().stream());
    OpenDocument refused(text, {.bufferSize = 38, .allocation = {document.host().work().allocations + 1, true}});
    refused.fill();
    refused.fill();
    MifFileHandle file = refused.handle("5");
    ASSERT_EQ(refused.access().mifFileOpen(&file), 1);
    refused.access().mifFileSeek(&file, 0, MIF_SEEK_START);
    char byte = 0;
    EXPECT_EQ(refused.access().mifFileRead(&file, &byte, 1), 0);
    EXPECT_EQ(refused.host().stream()->tell(refused.host().stream()), position);
}

TEST(Objects, TheFileOperations)
{
    OpenDocument document(framesDocument(frame("5", hexFacet) + frame("-7", "=A\n&literal data\n=EndInset\n") +
                                         frame("8", "") + frame("9", "=A\r\n&\\x41\r\n&42\r\n&43\r\n=EndInset\r\n")));
    document.fillAll();
    const MifFileAccess &access = document.access();
    MifFileHandle file = document.handle("5");
    MifFileHandle unknown = document.handle("6");
    char buffer[64];
    const auto read = [&](int32_t count) {
        return std::string(buffer, static_cast<size_t>(access.mifFileRead(&file, buffer, count)));
    };

    EXPECT_EQ(access.mifFileTell(&file), -1) << "nothing is open yet";
    EXPECT_EQ(access.mifFileRead(&file, buffer, 16), 0);
    EXPECT_EQ(access.mifFileOpen(&unknown), 0);
    ASSERT_EQ(access.mifFileOpen(&file), 1);
    EXPECT_EQ(access.mifFileSeek(&file, 0, MIF_SEEK_END), 1);
    EXPECT_EQ(access.mifFileTell(&file), 16);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(access.mifFileSeek(&file, 0, MIF_SEEK_START), 1);
        EXPECT_EQ(read(16), hexBytes) << time;
        EXPECT_EQ(read(16), "");
    }
    access.mifFileSeek(&file, 4, MIF_SEEK_START);
    EXPECT_EQ(access.mifFileTell(&file), 4);
    EXPECT_EQ(read(5), hexBytes.substr(4, 5));
    EXPECT_EQ(read(7), hexBytes.substr(9));
    EXPECT_EQ(access.mifFileTell(&file), 16);
    access.mifFileSeek(&file, -3, MIF_SEEK_START);
    EXPECT_EQ(read(2), hexBytes.substr(0, 2));
    access.mifFileSeek(&file, 2, MIF_SEEK_CURRENT);
    EXPECT_EQ(read(2), hexBytes.substr(4, 2));
    access.mifFileSeek(&file, -2, MIF_SEEK_CURRENT);
    access.mifFileSeek(&file, 1, 9);
    EXPECT_EQ(access.mifFileTell(&file), 6);
    EXPECT_EQ(read(0), "");
    EXPECT_EQ(read(-1), "");
    EXPECT_EQ(read(10), hexBytes.substr(6));
    EXPECT_EQ(access.mifFileClose(&file), 1);
    EXPECT_EQ(access.mifFileTell(&file), 0);

    // A read too small for the text before its byte gives nothing and spoils nothing.
    ASSERT_EQ(access.mifFileOpen(&file), 1);
    EXPECT_EQ(read(1), "");
    EXPECT_EQ(read(16), hexBytes);
    EXPECT_EQ(access.mifFileClose(&file), 1);

    // Nor does one whose text is used up before its last byte.
    file = document.handle("9");
    ASSERT_EQ(access.mifFileOpen(&file), 1);
    EXPECT_EQ(read(2), "");
    EXPECT_EQ(read(16), "ABC");
    EXPECT_EQ(access.mifFileClose(&file), 1);

    EXPECT_EQ(document.read("-7", 4096), "literal data");
    EXPECT_EQ(document.read("8", 4096), "");
    EXPECT_EQ(document.read(" 5 ", 16), hexBytes);
}

TEST(Objects, AReadWithoutMemoryChangesNothing)
{
    const std::string text = framesDocument(frame("5", hexFacet));
    OpenDocument document(text, {.allocation = {convert(text).work.allocations + 1, true}});
    document.fillAll();
    MifFileHandle file = document.handle("5");
    ASSERT_EQ(document.access().mifFileOpen(&file), 1);
    char buffer[] = "unchanged";
    EXPECT_EQ(document.access().mifFileRead(&file, buffer, 4), 0);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(document.access().mifFileTell(&file), 0);
}

// Byte for byte what was put in, a real PNG and a real JPEG among them, whatever the blocks.
TEST(Objects, ThoseOfATestDocument)
{
    const std::filesystem::path folder = MIFREADER_TEST_DOCUMENTS;
    OpenDocument document(readFile(folder / "objects.mif"));
    document.fillAll();
    size_t files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder / "objects")) {
        const std::string id = entry.path().stem().string();
        for (const int32_t block : {16, 100, 4096, 1 << 20}) {
            EXPECT_TRUE(document.read(id.c_str(), block) == readFile(entry.path())) << id << ' ' << block;
        }
        ++files;
    }
    EXPECT_EQ(files, 10U);
}

TEST(Objects, SeeksAtAndBeyondTheEnd)
{
    OpenDocument document(framesDocument(frame("5", hexFacet)));
    document.fillAll();
    const MifFileAccess &access = document.access();
    MifFileHandle file = document.handle("5");
    access.mifFileOpen(&file);
    const auto readAfter = [&](int32_t offset, int32_t origin, int32_t count) {
        EXPECT_EQ(access.mifFileSeek(&file, offset, origin), 1);
        char buffer[64];
        return std::string(buffer, static_cast<size_t>(access.mifFileRead(&file, buffer, count)));
    };
    EXPECT_EQ(readAfter(2, MIF_SEEK_START, 2), hexBytes.substr(2, 2));
    EXPECT_EQ(readAfter(0, MIF_SEEK_END, 2), hexBytes.substr(4, 2)) << "reads go on where they were";
    EXPECT_EQ(access.mifFileTell(&file), 18);
    EXPECT_EQ(readAfter(100, MIF_SEEK_START, 4), "");
    EXPECT_EQ(access.mifFileTell(&file), 0);
    EXPECT_EQ(readAfter(4, MIF_SEEK_START, 4), hexBytes.substr(4, 4)) << "readable again";
    EXPECT_EQ(readAfter(100, MIF_SEEK_CURRENT, 4), "");
    EXPECT_EQ(access.mifFileTell(&file), 8);
    EXPECT_EQ(readAfter(6, MIF_SEEK_START, 60), hexBytes.substr(6)) << "a short read";
    EXPECT_EQ(readAfter(0, MIF_SEEK_CURRENT, 4), "");
}

TEST(Objects, AnAmpersandIsPassedOverOnlyAtALineStart)
{
    OpenDocument document(framesDocument(frame("5", "=A\n&a&b&&c\n&&d\n=EndInset\n")));
    document.fillAll();
    for (const int32_t block : {64, 4096}) {
        EXPECT_EQ(document.read("5", block), "a&b&&c&d");
    }
    MifFileHandle file = document.handle("5");
    document.access().mifFileOpen(&file);
    std::string bytes;
    char byte = 0;
    while (bytes.size() < 6 && document.access().mifFileRead(&file, &byte, 1) == 1) {
        bytes += byte;
    }
    EXPECT_EQ(bytes, "a&b&&c");
}

// An object may be opened after any fill call, during a table's replay too, and the document goes on unharmed.
TEST(Objects, ReadingDisturbsNothing)
{
    std::string object = "=A\n&\\x\n";
    for (int line = 0; line < 300; ++line) {
        object += "&000102030405060708090A0b0c0D0E0f10111213\n";
    }
    object += "&\\x\n=EndInset\n";
    const std::string cell = "<Row <Cell <CellContent <Para <String `cell'> <AFrame 5>>>>>\n";
    const std::string text = documentOf("<AFrames\n" + frame("5", object) + frame("6", object) +
                                        ">\n<Tbls <Tbl <TblID 1> <TblNumColumns 1>" + "<TblColumnWidth  1.0\">" + cell +
                                        cell + cell + ">>\n<String `a'><ATbl 1><String `b'><AFrame 6>");
    const std::string expected = convert(text).stream;
    std::optional<std::string> bytes;
    for (const size_t bytesPerRead : {size_t{100}, size_t{1000}, size_t{4096}}) {
        OpenDocument document(text, {.bytesPerRead = bytesPerRead, .bufferSize = 100});
        size_t objectsRead = 0;
        while (document.fill()) {
            for (const char *id : {"5", "6"}) {
                const auto found = document.read(id, 512);
                if (document.frame(6) != nullptr && document.frame(6)->object.dataLength == 6000) {
                    ++objectsRead;
                    bytes = bytes.has_value() ? bytes : found;
                    EXPECT_TRUE(found == bytes && bytes->size() == 6000);
                }
            }
        }
        EXPECT_TRUE(document.conversion().stream == expected) << bytesPerRead;
        EXPECT_GT(objectsRead, 10U);
    }
}

// What the statements of a frame make of its record. Those outside of it are another's.
TEST(Objects, PlacesOfFrames)
{
    const std::string shape = "<ShapeRect  1.0\" 0.5\" 2.0\" 1.5\">";
    const auto placeOf = [](const std::string &frames) {
        OpenDocument document(documentOf("<PageSize  10\" 20\"><AFrames <Frame <ID 5> " + frames + ">"));
        document.fillAll();
        const MifFrameRecord *record = document.frame(5);
        return std::vector<int32_t>{record->x, record->y, record->width, record->height};
    };
    using Place = std::vector<int32_t>;
    EXPECT_EQ(placeOf(shape + ">"), (Place{1440, 720, 2880, 2160}));
    EXPECT_EQ(placeOf(shape + "<NSOffset  0.5\"><NSOffset  -0.25\">>"), (Place{1800, 720, 2880, 2160}));
    EXPECT_EQ(placeOf(shape + "<AnchorAlign Center>>"), (Place{5760, 720, 2880, 2160}));
    EXPECT_EQ(placeOf(shape + "<AnchorAlign Right><AnchorAlign Left>>"), (Place{11520, 720, 2880, 2160}));
    EXPECT_EQ(placeOf(">" + shape), (Place{0, 0, 0, 0})) << "behind the frame";
    EXPECT_EQ(placeOf("<Page " + shape + ">>"), (Place{0, 0, 0, 0})) << "on a page";
    EXPECT_EQ(placeOf("> <ImportObject " + shape + ">"), (Place{0, 0, 0, 0})) << "scanned raw";
    EXPECT_EQ(placeOf("> > <AnchorAlign Right"), (Place{0, 0, 0, 0})) << "behind all frames";
    EXPECT_EQ(tokensOf(shape + "<NSOffset 1><AFrames <AnchorAlign Right>>" + shape), "") << "no frame at all";
}

TEST(Objects, TheFrameToken)
{
    const Conversion conversion = convert(framesDocument(frame("5", hexFacet)));
    std::string token("\x14\x54\0\0\0"
                      "5\0"
                      "\x40\x0B\0\0"
                      "\x70\x08\0\0",
                      15);
    for (const int value : {2, 0, 100, 100, 0, 0, 0, 0, 0, 0, 0, 0, 180, 0, 180, 0}) {
        token += static_cast<char>(value);
        token.append(3, 0);
    }
    token += std::string("\xFF\0\0\0\0", 5);
    EXPECT_NE(conversion.stream.find(token), std::string::npos);
}

TEST(Objects, FileReferences)
{
    const auto nameOf = [](const std::string &reference) {
        TestHost host("<MIFFile 5> <AFrames <Frame <ID 1> <ImportObFileDI `" + reference + "'>>>");
        MifContext *context = host.open();
        EXPECT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
        Conversion conversion;
        host.fill(context, conversion);
        const char *name = context->frames.currentFrame->fileName;
        std::string result = name != nullptr ? name : "(none)";
        host.close(context);
        return result;
    };
    EXPECT_EQ(nameOf("<c\\>images<c\\>logo.gif"), "images\\logo.gif");
    EXPECT_EQ(nameOf("<u\\><c\\>art<c\\>x.tif"), "..\\art\\x.tif");
    EXPECT_EQ(nameOf("<r\\><v\\>disk<h\\>host<c\\>f"), "disk\\host\\f");
    EXPECT_EQ(nameOf("plain.gif"), "plain.gif");
    const std::string part(600, 'n');
    EXPECT_EQ(nameOf("<c\\>" + part + "<c\\>" + part), part + "\\" + part.substr(0, 422)) << "1023 characters";
}
