#include "platform/ui/Font.hpp"

#include <QtCore/QStringList>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>
#include <algorithm>
#include <utility>

namespace platform {
namespace {

Font systemFontOfKind(QFontDatabase::SystemFont kind, double size) {
    // The family that is really used: the desktop's may be a name that stands for others, such as "Sans".
    return {QFontInfo(QFontDatabase::systemFont(kind)).family().toStdString(), size, false};
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
    font.isBold = std::ranges::any_of(styles, [&](const QString& style) { return QFontDatabase::bold(family, style); });
    return font;
}

}  // namespace platform
