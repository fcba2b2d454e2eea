/// @file
/// Numbers and words in files: tables, drawings, pages.
#ifndef EXAMPLES_TEXT_H
#define EXAMPLES_TEXT_H

#include <sstream>
#include <string>

namespace examples {

/// A stream that writes numbers with a point whatever the user's language is.
std::ostringstream plainStream(int decimals);

/// A text as it stands in a page.
std::string escaped(const std::string& text);

/// @throws Failure when the file cannot be written; no partial file stays behind.
void writeText(const std::string& path, const std::string& text);

}  // namespace examples

#endif  // EXAMPLES_TEXT_H
