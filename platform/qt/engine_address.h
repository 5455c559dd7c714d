#pragma once

#include <QUrl>

#include <optional>
#include <string_view>

namespace kestrune {

// The address that a typed text means, "http://" added where it has no scheme. Nothing for text that is no
// address, and for schemes that a typed address must not use: a script would run in whatever page is showing.
std::optional<QUrl> typed_address(std::string_view text);

// Whether a page may lead to the address. Everything else would leave the engine or open its own pages.
bool may_be_visited(const QUrl& url);

} // namespace kestrune
