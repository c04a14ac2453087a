#include "extract/pdftext.h"

#include <QFile>

#include <limits>
#include <memory>

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

namespace kelva {

void preparePdfText()
{
    poppler::ustring::from_utf8("a").to_utf8();
}

ExtractedText pdfText(QFile &file, const TextLimits &limits)
{
    // What it has to say of a damaged file is of use to nobody here.
    poppler::set_debug_error_function([](const std::string &, void *) {}, nullptr);
    uchar *bytes = file.size() <= std::numeric_limits<int>::max() ? file.map(0, file.size()) : nullptr;
    if (!bytes)
        return std::nullopt;
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_raw_data(
        reinterpret_cast<const char *>(bytes), static_cast<int>(file.size())));
    if (!document || document->is_locked())
        return std::nullopt;
    QString text;
    for (int i = 0; i < document->pages() && text.size() < limits.characters; ++i) {
        const std::unique_ptr<poppler::page> page(document->create_page(i));
        if (!page)
            continue;
        const poppler::byte_array utf8 =
            page->text(poppler::rectf(), poppler::page::non_raw_non_physical_layout).to_utf8();
        text += QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size())) + QLatin1Char('\n');
    }
    return text.left(limits.characters);
}

} // namespace kelva
