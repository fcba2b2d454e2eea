/// @file
/// Numbers and words in files: tables, drawings, pages.
#ifndef EXAMPLES_TEXT_H
#define EXAMPLES_TEXT_H

#include <sstream>
#include <string>
#include <vector>

#include "image.h"

namespace examples {

/// A stream that writes numbers with a point whatever the user's language is.
std::ostringstream plainStream(int decimals);

/// A number with that many decimals.
std::string number(double value, int decimals);

/// A colour as it stands in a page, `#rrggbb`.
std::string htmlColour(Rgb colour);

/// A text as it stands in a page.
std::string escaped(const std::string& text);

/// A page up to its heading. Its end is `kPageEnd`.
std::string pageStart(const std::string& title);
inline constexpr const char* kPageEnd = "</body>\n</html>\n";

/// A column by its name in files and its heading in pages.
struct Column {
    const char* key;
    const char* heading;
};

/// A table of texts, as many in each row as there are columns.
struct Table {
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
};

/// A line with the names of the columns, then a line for each row.
std::string csvOf(const Table& table);

/// The table as a part of a page.
std::string htmlOf(const Table& table);

/// @throws Failure when the file cannot be written; no partial file stays behind.
void writeText(const std::string& path, const std::string& text);

}  // namespace examples

#endif  // EXAMPLES_TEXT_H
