#include "platform/qt/engine_image.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <limits>

namespace kestrune {
namespace {

constexpr qsizetype longest_image = 128 << 20; // characters
constexpr int deepest_frame = 24;

ElementRef ref_of(const DocumentId& document, const QJsonValue& value) {
    const double number = value.toDouble();
    const bool fits = number >= 1 && number <= std::numeric_limits<std::uint32_t>::max();
    return {document, fits ? static_cast<std::uint32_t>(number) : 0};
}

PageOption read_option(const DocumentId& document, const QJsonArray& shown) {
    return {ref_of(document, shown.at(0)), text_of(shown.at(1)), text_of(shown.at(2)), shown.at(3).toBool()};
}

PageElement read_element(const DocumentId& document, const QJsonObject& shown) {
    PageElement element;
    element.ref = ref_of(document, shown[u"element"]);
    element.type = text_of(shown[u"type"]);
    element.name = text_of(shown[u"name"]);
    element.value = text_of(shown[u"value"]);
    element.src = text_of(shown[u"src"]);
    element.form_action = text_of(shown[u"formAction"]);
    element.checked = shown[u"checked"].toBool();
    element.locked = shown[u"locked"].toBool();
    element.label = text_of(shown[u"label"]);
    element.label_from = text_of(shown[u"from"]);
    for (const QJsonValue& option : shown[u"options"].toArray())
        element.options.push_back(read_option(document, option.toArray()));
    return element;
}

std::vector<PageElement> read_elements(const DocumentId& document, const QJsonValue& shown) {
    std::vector<PageElement> elements;
    for (const QJsonValue& element : shown.toArray())
        elements.push_back(read_element(document, element.toObject()));
    return elements;
}

PageForm read_form(const DocumentId& document, const QJsonObject& shown) {
    PageForm form;
    form.ref = ref_of(document, shown[u"element"]);
    form.id = text_of(shown[u"id"]);
    form.action = text_of(shown[u"action"]);
    form.action_input = text_of(shown[u"actionInput"]);
    form.elements = read_elements(document, shown[u"elements"]);
    return form;
}

PageDocument read_document(const QJsonObject& shown, PageParts parts, int depth) {
    PageDocument document;
    document.id = text_of(shown[u"id"]);
    if (document.id.empty())
        return document;
    document.url = text_of(shown[u"url"]);
    document.origin = text_of(shown[u"origin"]);
    document.parts = parts;
    for (const QJsonValue& tag : shown[u"tags"].toArray())
        document.form_tags.push_back(text_of(tag));
    for (const QJsonValue& link : shown[u"links"].toArray())
        document.links.push_back({ref_of(document.id, link.toArray().at(0)), text_of(link.toArray().at(1))});
    for (const QJsonValue& form : shown[u"forms"].toArray())
        document.forms.push_back(read_form(document.id, form.toObject()));
    document.inputs = read_elements(document.id, shown[u"inputs"]);
    document.active_element = read_element(document.id, shown[u"active"].toObject());
    document.source = text_of(shown[u"source"]);
    if (depth < deepest_frame) {
        for (const QJsonValue& frame : shown[u"frames"].toArray())
            document.frames.push_back(read_document(frame.toObject(), parts, depth + 1));
    }
    return document;
}

QLatin1String kind_of(PageEdit::Kind kind) {
    switch (kind) {
    case PageEdit::Kind::click:
        return QLatin1String("click");
    case PageEdit::Kind::value:
        return QLatin1String("value");
    case PageEdit::Kind::check:
        return QLatin1String("check");
    case PageEdit::Kind::select:
        return QLatin1String("select");
    case PageEdit::Kind::focus:
        return QLatin1String("focus");
    }
    return {};
}

} // namespace

std::string text_of(const QJsonValue& value) { return value.toString().toStdString(); }

std::optional<PageDocument> read_image(const QString& json, const DocumentId& document, PageParts parts) {
    if (json.size() > longest_image)
        return std::nullopt;
    const QJsonDocument parsed = QJsonDocument::fromJson(json.toUtf8());
    if (!parsed.isObject())
        return std::nullopt;
    return read_image(parsed.object(), document, parts);
}

std::optional<PageDocument> read_image(const QJsonObject& shown, const DocumentId& document,
                                       PageParts parts) {
    PageDocument image = read_document(shown, parts, 0);
    if (document.empty() || image.id != document)
        return std::nullopt;
    return image;
}

QByteArray write_edits(const std::vector<PageEdit>& edits) {
    QJsonArray list;
    for (const PageEdit& edit : edits) {
        list.append(QJsonObject{{QStringLiteral("kind"), kind_of(edit.kind)},
                                {QStringLiteral("document"), QString::fromStdString(edit.ref.document)},
                                {QStringLiteral("element"), static_cast<qint64>(edit.ref.element)},
                                {QStringLiteral("text"), QString::fromStdString(edit.text)}});
    }
    return QJsonDocument(list).toJson(QJsonDocument::Compact);
}

QByteArray quoted(std::string_view text) {
    const QJsonArray one{QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))};
    const QByteArray list = QJsonDocument(one).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

} // namespace kestrune
