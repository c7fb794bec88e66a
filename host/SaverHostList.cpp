#include "host/SaverHostList.hpp"

#include "platform/StringFormat.hpp"

#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

namespace host {
namespace {

QLabel* makeLabel(const std::string& text) {
    auto* const label = new QLabel(QString::fromStdString(text));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* makeHeading(const std::string& text) {
    QLabel* const label = makeLabel(text);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

/// One line, however long: it scrolls, and one can copy it.
QLineEdit* makeLine(const std::string& line, const std::string& name) {
    auto* const edit = new QLineEdit(QString::fromStdString(line));
    edit->setReadOnly(true);
    edit->setCursorPosition(0);
    edit->setAccessibleName(QString::fromStdString(name));
    return edit;
}

}  // namespace

SaverHostList::SaverHostList(const std::vector<SaverHost>& hosts, const HostTexts& texts) {
    auto* const content = new QWidget;
    auto* const layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    if (hosts.empty()) {
        layout->addWidget(makeLabel(texts.text("HOST_CONFIGURE_NO_HOST")));
    }
    for (const SaverHost& host : hosts) {
        if (&host != &hosts.front()) {
            layout->addSpacing(fontMetrics().lineSpacing() / 2);
        }
        layout->addWidget(makeHeading(host.name));
        const std::string explanation = texts.text(host.explanationKey);
        layout->addWidget(makeLabel(explanation));
        if (!host.line.empty()) {
            const std::string name = platform::formatted(texts.text("HOST_CONFIGURE_LINE_FORMAT"), host.name);
            QLineEdit* const line = makeLine(host.line, name);
            line->setAccessibleDescription(QString::fromStdString(explanation));
            layout->addWidget(line);
        }
    }
    layout->addStretch();
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setWidget(content);
    setAccessibleName(QString::fromStdString(texts.text("HOST_CONFIGURE_HOSTS")));
}

/// All of it, where that is not too much to ask.
QSize SaverHostList::sizeHint() const {
    constexpr int mostLines = 10;
    const QSize whole = widget()->sizeHint();
    return {whole.width(), qMin(whole.height(), mostLines * fontMetrics().lineSpacing())};
}

}  // namespace host
