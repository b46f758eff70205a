#include "info_report.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "display.h"
#include "mifconvert/token_names.h"

namespace mifread
{

namespace
{

constexpr double twipsToInch = 1440;

// A count and its noun.
std::string counted(std::uint64_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

// A number of bytes, rounded.
std::string sizeText(double bytes)
{
    if (bytes < 1000) {
        return counted(static_cast<std::uint64_t>(bytes), "byte");
    }
    constexpr std::array<std::string_view, 3> units = {"kB", "MB", "GB"};
    std::size_t unit = 0;
    for (bytes /= 1000; bytes >= 1000 && unit + 1 < units.size(); bytes /= 1000) {
        ++unit;
    }
    return fmt::format("{:.1f} {}", bytes, units[unit]);
}

std::string lengthsText(std::uint32_t width, std::uint32_t height)
{
    return fmt::format("{:.4g} x {:.4g} in", width / twipsToInch, height / twipsToInch);
}

std::string timeText(double seconds)
{
    return seconds < 1 ? fmt::format("{:.1f} ms", seconds * 1000) : fmt::format("{:.2f} s", seconds);
}

double bytesPerSecond(const DocumentInfo &info)
{
    return info.seconds > 0 ? static_cast<double>(info.size) / info.seconds : 0;
}

// Rows of text with a label before the first of each group.
class Rows
{
public:
    explicit Rows(std::string_view heading) : text_(shown(heading) + '\n') {}

    void add(std::string_view label, std::string_view value)
    {
        fmt::format_to(std::back_inserter(text_), "  {:<9}{}\n", label == lastLabel_ ? "" : label, value);
        lastLabel_ = label;
    }

    // Some values in as few rows as fit on a screen.
    void addList(std::string_view label, const std::vector<std::string> &values)
    {
        constexpr std::size_t widest = 88;
        std::string row;
        for (const std::string &value : values) {
            if (!row.empty() && row.size() + value.size() > widest) {
                add(label, row + ",");
                row.clear();
            }
            row += (row.empty() ? "" : ", ") + value;
        }
        if (!row.empty()) {
            add(label, row);
        }
    }

    std::string take()
    {
        return std::move(text_);
    }

private:
    std::string text_;
    std::string_view lastLabel_;
};

void addTokens(const DocumentInfo &info, Rows &rows)
{
    std::vector<std::string> counts;
    for (std::size_t kind = 0; kind < mifconvert::tokenNames.size(); ++kind) {
        if (info.tokens[kind] > 0) {
            counts.push_back(fmt::format("{} {}", info.tokens[kind], mifconvert::tokenNames[kind]));
        }
    }
    rows.addList("tokens", counts);
}

void addFonts(const DocumentInfo &info, Rows &rows)
{
    std::size_t widest = 0;
    for (const FontInfo &font : info.fonts) {
        widest = std::max(widest, shown(font.name).size());
    }
    for (const FontInfo &font : info.fonts) {
        rows.add("fonts", fmt::format("{:<{}}  {:<10}  {} pt", shown(font.name), widest, font.familyClass,
                                      fmt::join(font.sizes, ", ")));
    }
}

void addTables(const DocumentInfo &info, Rows &rows)
{
    std::vector<std::string> counts;
    for (const auto &[columns, tables] : info.tables) {
        counts.push_back(columns > 0 ? fmt::format("{} of {}", tables, counted(columns, "column"))
                                     : fmt::format("{} without columns", tables));
    }
    rows.addList("tables", counts);
}

std::string_view reasonForNoText(const DocumentInfo &info)
{
    const bool isUnplaced = std::any_of(info.lossTotals.begin(), info.lossTotals.end(),
                                        [](const auto &total) { return total.kind == mifhost::LossKind::Unplaced; });
    return isUnplaced ? "none came out: it stands on no page" : "none came out: the document's flows hold none";
}

void addObjects(const DocumentInfo &info, Rows &rows)
{
    std::size_t widestId = 0;
    std::size_t widestType = 0;
    for (const ObjectInfo &object : info.objects) {
        widestId = std::max(widestId, object.id.size());
        widestType = std::max(widestType, object.mimeType.size());
    }
    for (const ObjectInfo &object : info.objects) {
        rows.add("objects",
                 fmt::format("{:>{}}  {:<{}}  {:>9}  {}{}", shown(object.id), widestId, shown(object.mimeType),
                             widestType, sizeText(static_cast<double>(object.size)),
                             lengthsText(object.width, object.height), object.isComplete ? "" : ", not complete"));
    }
}

} // namespace

std::string infoText(const DocumentInfo &info)
{
    Rows rows(info.name);
    rows.add("size", sizeText(static_cast<double>(info.size)));
    rows.add("text", fmt::format("{} in {}; {}, {}, {}", counted(info.characters, "character"),
                                 counted(info.count<mifhost::Text>(), "run"),
                                 counted(info.count<mifhost::ParaEnd>(), "paragraph"),
                                 counted(info.count<mifhost::LineBreak>(), "line"),
                                 counted(info.count<mifhost::Tab>(), "tab")));
    if (info.characters == 0) {
        rows.add("text", reasonForNoText(info));
    }
    for (std::size_t field = 0; field < info.fields.size(); ++field) {
        if (!info.fields[field].empty()) {
            rows.add("document",
                     fmt::format("{}: {}", mifconvert::documentFieldNames[field], shown(info.fields[field])));
        }
    }
    addTokens(info, rows);
    addFonts(info, rows);
    addTables(info, rows);
    addObjects(info, rows);
    for (const mifhost::LossTotal &total : info.lossTotals) {
        rows.add("lost", fmt::format("{} of kind {}, the first at byte {}", total.count,
                                     mifconvert::nameOf(mifconvert::lossKindNames, total.kind), total.first));
    }
    for (const std::string &loss : info.losses) {
        rows.add("losses", shown(loss));
    }
    rows.add("reader", fmt::format("{} of memory at most, {}, {}/s", sizeText(static_cast<double>(info.peakMemory)),
                                   timeText(info.seconds), sizeText(bytesPerSecond(info))));
    return rows.take();
}

Json infoJson(const DocumentInfo &info)
{
    Json tokens = Json::object();
    for (std::size_t kind = 0; kind < mifconvert::tokenNames.size(); ++kind) {
        if (kind < mifconvert::plainTokens || info.tokens[kind] > 0) {
            tokens[std::string(mifconvert::tokenNames[kind])] = info.tokens[kind];
        }
    }
    Json fonts = Json::array();
    for (const FontInfo &font : info.fonts) {
        fonts.push_back({{"name", font.name}, {"class", font.familyClass}, {"sizes", font.sizes}});
    }
    Json tables = Json::array();
    for (const auto &[columns, count] : info.tables) {
        tables.push_back({{"columns", columns}, {"count", count}});
    }
    Json fields = Json::object();
    for (std::size_t field = 0; field < info.fields.size(); ++field) {
        if (!info.fields[field].empty()) {
            fields[std::string(mifconvert::documentFieldNames[field])] = info.fields[field];
        }
    }
    Json losses = Json::array();
    for (const mifhost::LossTotal &total : info.lossTotals) {
        losses.push_back({{"kind", mifconvert::nameOf(mifconvert::lossKindNames, total.kind)},
                          {"count", total.count},
                          {"first", total.first}});
    }
    Json objects = Json::array();
    for (const ObjectInfo &object : info.objects) {
        objects.push_back({{"id", object.id},
                           {"mimeType", object.mimeType},
                           {"size", object.size},
                           {"complete", object.isComplete},
                           {"width", object.width},
                           {"height", object.height},
                           {"kind", object.kind}});
    }
    return {{"name", info.name},
            {"size", info.size},
            {"status", info.losses.empty() ? "converted" : "losses"},
            {"messages", info.losses},
            {"fields", fields},
            {"losses", losses},
            {"characters", info.characters},
            {"tokens", tokens},
            {"fonts", fonts},
            {"tables", tables},
            {"objects", objects},
            {"peakMemory", info.peakMemory},
            {"seconds", info.seconds},
            {"bytesPerSecond", static_cast<std::uint64_t>(bytesPerSecond(info))}};
}

} // namespace mifread
