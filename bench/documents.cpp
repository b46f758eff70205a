#include "documents.h"

#include <array>
#include <string_view>
#include <utility>

namespace mifbench
{

namespace
{

// Text as it stands in a MIF string and in XML.
struct Text {
    std::string_view mif;
    std::string_view xml;

    constexpr Text(const char *both) : mif(both), xml(both) {}
    constexpr Text(const char *mifText, const char *xmlText) : mif(mifText), xml(xmlText) {}
};

constexpr std::array<Text, 4> lines = {
    "The barometer is read at seven, at two and at nine, and each reading is entered at once.",
    "When the wind turns, the vane is watched for a full minute before its direction is noted down.",
    "A dry bulb and a wet one hang side by side in the shade of the screen.",
    Text("The keeper\\xd5 s book holds a line for each of them; what is below zero is written in red.",
         "The keeper&#8217;s book holds a line for each of them; what is below zero is written in red.")};

constexpr std::array<Text, 4> words = {"the mean of the day", "pressure", "wind and weather", "at the second reading"};

class Writer
{
public:
    // A statement that holds others. MIF tells at its end what ends there.
    void open(std::string_view name)
    {
        newLine();
        mif_.append("<").append(name);
        xml_.append("<").append(name).append(">");
        ++depth_;
    }

    void close(std::string_view name)
    {
        --depth_;
        newLine();
        mif_.append("> # end of ").append(name);
        xml_.append("</").append(name).append(">");
    }

    // One with a value as it stands.
    void value(std::string_view name, std::string_view text)
    {
        newLine();
        mif_.append("<").append(name).append(" ").append(text).append(">");
        element(name, text);
    }

    void number(std::string_view name, std::size_t value)
    {
        this->value(name, std::to_string(value));
    }

    // One with a string.
    void string(std::string_view name, const Text &text)
    {
        newLine();
        mif_.append("<").append(name).append(" `").append(text.mif).append("'>");
        element(name, text.xml);
    }

    // An embedded object of so many lines of data, which stand between their marks in MIF and in one element in XML.
    void object(std::size_t dataLines)
    {
        constexpr std::string_view digits = "0100090000034a0000000200050000000000050000000b02000000000500a1f3";
        open("ImportObject");
        value("ImportObFixedSize", "Yes");
        mif_ += "\n=WMF\n&%v\n&\\x";
        xml_ += "\n<data>";
        for (std::size_t line = 0; line < dataLines; ++line) {
            mif_.append("\n&").append(digits);
            xml_.append("\n").append(digits);
        }
        mif_ += "\n&\\x\n=EndInset";
        xml_ += "</data>";
        close("ImportObject");
    }

    std::size_t size() const
    {
        return mif_.size();
    }

    Document take()
    {
        return {std::move(mif_ += '\n'), std::move(xml_ += '\n')};
    }

private:
    void element(std::string_view name, std::string_view text)
    {
        xml_.append("<").append(name).append(">").append(text).append("</").append(name).append(">");
    }

    void newLine()
    {
        if (!mif_.empty()) {
            mif_.append("\n").append(depth_, ' ');
            xml_.append("\n").append(depth_, ' ');
        }
    }

    std::string mif_;
    std::string xml_ = "<MIF>"; // MIF has no statement around all others
    std::size_t depth_ = 0;
};

// A document with one body page, whose text rectangle is 9.
Writer beginDocument()
{
    Writer writer;
    writer.value("MIFFile", "5.50");
    writer.open("Page");
    writer.value("PageType", "BodyPage");
    writer.open("TextRect");
    writer.value("ID", "9");
    writer.close("TextRect");
    writer.close("Page");
    return writer;
}

Document endDocument(Writer &writer)
{
    Document document = writer.take();
    document.xml += "</MIF>\n";
    return document;
}

void openParagraph(Writer &writer, std::size_t number, const char *tag)
{
    writer.open("Para");
    writer.number("Unique", 990000 + number);
    writer.string("PgfTag", tag);
    writer.open("ParaLine");
    writer.value("TextRectID", "9");
}

void closeParagraph(Writer &writer)
{
    writer.close("ParaLine");
    writer.close("Para");
}

// Paragraphs of five lines.
Document plainText(std::size_t size)
{
    Writer writer = beginDocument();
    writer.open("TextFlow");
    for (std::size_t paragraph = 0; writer.size() < size; ++paragraph) {
        openParagraph(writer, paragraph, "Body");
        for (std::size_t line = 0; line < 5; ++line) {
            if (line != 0) {
                writer.close("ParaLine");
                writer.open("ParaLine");
            }
            writer.string("String", lines[(paragraph + line) % lines.size()]);
        }
        closeParagraph(writer);
    }
    writer.close("TextFlow");
    return endDocument(writer);
}

constexpr std::array<const char *, 4> tags = {"Heading", "Body", "Bulleted", "Quotation"};
constexpr std::array<const char *, 4> indents = {"0.0\"", "0.25\"", "18.0 pt", "1.5 cm"};
constexpr std::array<const char *, 4> alignments = {"Left", "LeftRight", "Center", "Right"};

void writeTabStops(Writer &writer)
{
    writer.value("PgfNumTabs", "2");
    for (const char *position : {"1.0\"", "3.5\""}) {
        writer.open("TabStop");
        writer.value("TSX", position);
        writer.value("TSType", "Left");
        writer.string("TSLeaderStr", " ");
        writer.close("TabStop");
    }
}

void writeFont(Writer &writer, const char *tag, bool isEmphasis)
{
    writer.open(tag);
    writer.string("FTag", isEmphasis ? "Emphasis" : "");
    writer.string("FFamily", "Times");
    writer.value("FSize", "12.0 pt");
    writer.string("FWeight", isEmphasis ? "Bold" : "Regular");
    writer.string("FAngle", isEmphasis ? "Italic" : "Regular");
    writer.value("FUnderlining", "FNoUnderlining");
    writer.string("FColor", isEmphasis ? "Red" : "Black");
    writer.value("FLocked", "No");
    writer.close(tag);
}

void writeCatalogs(Writer &writer)
{
    writer.open("PgfCatalog");
    for (std::size_t i = 0; i < tags.size(); ++i) {
        writer.open("Pgf");
        writer.string("PgfTag", tags[i]);
        writer.value("PgfAlignment", alignments[i]);
        for (const char *name : {"PgfFIndent", "PgfLIndent", "PgfRIndent"}) {
            writer.value(name, indents[i]);
        }
        writer.value("PgfSpBefore", "6.0 pt");
        writer.value("PgfSpAfter", "3.0 pt");
        writer.value("PgfLeading", "2.0 pt");
        writeTabStops(writer);
        writeFont(writer, "PgfFont", false);
        writer.value("PgfHyphenate", "Yes");
        writer.close("Pgf");
    }
    writer.close("PgfCatalog");
    writer.open("FontCatalog");
    writeFont(writer, "Font", true);
    writer.close("FontCatalog");
}

// A new format for every paragraph, a new font for every few words, some properties of the paragraph's own.
Document formattedText(std::size_t size)
{
    Writer writer = beginDocument();
    writeCatalogs(writer);
    writer.open("TextFlow");
    for (std::size_t paragraph = 0; writer.size() < size; ++paragraph) {
        openParagraph(writer, paragraph, tags[paragraph % tags.size()]);
        if (paragraph % 3 == 0) {
            writer.open("Pgf");
            writer.value("PgfLIndent", indents[paragraph / 3 % indents.size()]);
            writer.value("PgfAlignment", alignments[paragraph / 3 % alignments.size()]);
            writeTabStops(writer);
            writer.close("Pgf");
        }
        for (std::size_t run = 0; run < 4; ++run) {
            writer.string("String", words[(paragraph + run) % words.size()]);
            writer.value("Char", run % 2 == 0 ? "HardSpace" : "Tab");
            writeFont(writer, "Font", run % 2 == 0);
        }
        writer.string("String", lines[paragraph % lines.size()]);
        closeParagraph(writer);
    }
    writer.close("TextFlow");
    return endDocument(writer);
}

void writeCell(Writer &writer, std::size_t number)
{
    writer.open("Cell");
    writer.open("CellContent");
    writer.open("Para");
    writer.string("PgfTag", "Body");
    writer.open("ParaLine");
    writer.string("String", words[number % words.size()]);
    closeParagraph(writer);
    writer.close("CellContent");
    writer.close("Cell");
}

void writeTable(Writer &writer, std::size_t id)
{
    constexpr std::size_t rows = 8;
    constexpr std::size_t columns = 3;
    writer.open("Tbl");
    writer.number("TblID", id);
    writer.string("TblTag", "Format A");
    writer.number("TblNumColumns", columns);
    for (std::size_t column = 0; column < columns; ++column) {
        writer.value("TblColumnWidth", "1.5\"");
    }
    writer.open("TblBody");
    for (std::size_t row = 0; row < rows; ++row) {
        writer.open("Row");
        for (std::size_t column = 0; column < columns; ++column) {
            writeCell(writer, row + column);
        }
        writer.close("Row");
    }
    writer.close("TblBody");
    writer.close("Tbl");
}

// Tables, nine tenths of the document, and a text flow with an anchor for each.
Document tables(std::size_t size)
{
    Writer writer = beginDocument();
    std::size_t count = 0;
    writer.open("Tbls");
    while (writer.size() < size / 10 * 9) {
        writeTable(writer, count++);
    }
    writer.close("Tbls");
    writer.open("TextFlow");
    for (std::size_t paragraph = 0; paragraph < count || writer.size() < size; ++paragraph) {
        openParagraph(writer, paragraph, "Body");
        writer.string("String", lines[paragraph % lines.size()]);
        if (paragraph < count) {
            writer.number("ATbl", paragraph);
        }
        closeParagraph(writer);
    }
    writer.close("TextFlow");
    return endDocument(writer);
}

// Frames with an embedded object each, of 2 to 32 KiB in lines of 32 bytes, and a text flow with an anchor for each.
Document objects(std::size_t size)
{
    Writer writer = beginDocument();
    std::size_t count = 0;
    writer.open("AFrames");
    while (writer.size() < size / 10 * 9) {
        writer.open("Frame");
        writer.number("ID", count++);
        writer.value("ShapeRect", " 1.0\" 1.0\" 4.0\" 2.5\"");
        writer.value("FrameType", "Below");
        writer.object(std::size_t{64} << count % 5);
        writer.close("Frame");
    }
    writer.close("AFrames");
    writer.open("TextFlow");
    for (std::size_t paragraph = 0; paragraph < count || writer.size() < size; ++paragraph) {
        openParagraph(writer, paragraph, "Body");
        writer.string("String", lines[paragraph % lines.size()]);
        if (paragraph < count) {
            writer.number("AFrame", paragraph);
        }
        closeParagraph(writer);
    }
    writer.close("TextFlow");
    return endDocument(writer);
}

// Drawings: statements of a few bytes each, most of which the reader does not know.
Document smallStatements(std::size_t size)
{
    Writer writer = beginDocument();
    writer.open("TextFlow");
    for (std::size_t line = 0; writer.size() < size; ++line) {
        writer.open("PolyLine");
        writer.number("Unique", 1000 + line % 9000);
        writer.value("Pen", "0");
        writer.value("Fill", "15");
        writer.value("PenWidth", " 0.5 pt");
        writer.value("Separation", "0");
        writer.value("NumPoints", "3");
        for (const char *point : {" 1.0\" 2.0\"", " 1.5\" 2.5\"", " 2.0\" 1.0\""}) {
            writer.value("Point", point);
        }
        writer.close("PolyLine");
    }
    writer.close("TextFlow");
    return endDocument(writer);
}

constexpr std::array<Kind, 5> allKinds = {{{"plain", plainText},
                                           {"formatted", formattedText},
                                           {"tables", tables},
                                           {"objects", objects},
                                           {"small", smallStatements}}};

} // namespace

std::span<const Kind> kinds()
{
    return allKinds;
}

} // namespace mifbench
