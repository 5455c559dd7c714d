#pragma once

#include "platform/page.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// What the page side sends is a stranger's word: it is taken key by key and type by type, bounded in size,
// and what does not fit is dropped. The forms are described on top of page/script.js.

// "" for what is no text.
std::string text_of(const QJsonValue& value);

// Nothing when the text is no image of the document. `parts` is what was asked for.
std::optional<PageDocument> read_image(const QString& json, const DocumentId& document, PageParts parts);
std::optional<PageDocument> read_image(const QJsonObject& shown, const DocumentId& document, PageParts parts);

// The edits as the page side takes them.
QByteArray write_edits(const std::vector<PageEdit>& edits);

// The text as a JSON string, fit to stand in a script.
QByteArray quoted(std::string_view text);

} // namespace kestrune
