#include "values/csv_cell.h"

#include <algorithm>
#include <iterator>

namespace vndiscover::host {
namespace {

bool StartsFormula(std::string_view text) {
    // The last four are the full-width forms of the first four.
    constexpr std::string_view kStarts[] = {
        "=",           "+", "-", "@", "\t", "\r", "\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D",
        "\xEF\xBC\xA0"};
    return std::any_of(std::begin(kStarts), std::end(kStarts), [&](std::string_view start) {
        return text.substr(0, start.size()) == start;
    });
}

}  // namespace

std::string CsvCell(std::string_view text) {
    std::string cell = "\"";
    bool isStart = true;
    for (size_t at = 0; at < text.size(); ++at) {
        if (isStart && StartsFormula(text.substr(at))) cell += '\'';
        // With the list separator of many languages, spreadsheets begin a new cell after a
        // semicolon, even between quotes that do not begin a cell.
        isStart = text[at] == ';';
        if (text[at] == '"') cell += '"';
        cell += text[at];
    }
    return cell + "\"";
}

std::string HarmlessCell(std::string_view text) {
    return (StartsFormula(text) ? "'" : "") + std::string(text);
}

}  // namespace vndiscover::host
