#pragma once

#include <string>
#include <string_view>

namespace kestrune {

// The text, in UTF-8, of an XML document that somebody else made, whatever it is encoded in: what its byte
// order mark says, else what the zero bytes of its first "<" show to be UTF-16, else what its XML declaration
// says. Bytes that do not fit the encoding they are declared in become U+FFFD. A document that tells nothing,
// or the name of an encoding that the platform does not know, or one that its own bytes rule out, is read as
// UTF-8 or Windows-1252, whichever its bytes are. ISO-8859-1 is read as Windows-1252, which differs from it
// only where the former has no characters. The byte order mark is no part of the text.
[[nodiscard]] std::string decode_xml(std::string_view bytes);

} // namespace kestrune
