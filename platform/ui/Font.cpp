#include "platform/ui/Font.hpp"

#include <QtCore/QStringList>
#include <QtGui/QFontDatabase>
#include <algorithm>
#include <utility>

namespace platform {
namespace {

Font systemFontOfKind(QFontDatabase::SystemFont kind, double size) {
    const QFont font = QFontDatabase::systemFont(kind);
    return {font.family().toStdString(), size, false};
}

}  // namespace

std::optional<Font> fontNamed(const std::string& family, double size) {
    // Asked of the list, because the matcher below it always finds some substitute. A family that several foundries
    // offer stands there as "Name [Foundry]".
    const QString name = QString::fromStdString(family);
    const auto isCalledSo = [&](const QString& listed) {
        return listed.compare(name, Qt::CaseInsensitive) == 0 ||
               listed.startsWith(name + QLatin1String(" ["), Qt::CaseInsensitive);
    };
    const QStringList families = QFontDatabase::families();
    return std::ranges::any_of(families, isCalledSo) ? std::optional(Font{family, size, false}) : std::nullopt;
}

Font systemFont(double size) {
    return systemFontOfKind(QFontDatabase::GeneralFont, size);
}

Font userFixedPitchFont(double size) {
    return systemFontOfKind(QFontDatabase::FixedFont, size);
}

Font boldFont(Font font) {
    const QString family = QString::fromStdString(font.family);
    const QStringList styles = QFontDatabase::styles(family);
    const bool hasBoldFace =
        std::ranges::any_of(styles, [&](const QString& style) { return QFontDatabase::bold(family, style); });
    // A name that stands for other families, such as "Sans", lists no styles of its own.
    font.isBold = hasBoldFace || styles.isEmpty();
    return font;
}

}  // namespace platform
