#pragma once

#include "settings/QZLTextTrigger.hpp"

#include <string>

/// A trigger that looks like a link: underlined, in the palette's link colour, under a pointing hand. Main thread;
/// owned by its parent.
class QZLHotLink : public QZLTextTrigger {
    Q_OBJECT

public:
    explicit QZLHotLink(QWidget* parent = nullptr);

    /// Called when a form has been loaded: gives the text that it set the link's looks.
    Q_INVOKABLE void awakeFromNib();

    std::string stringValue() const { return text().toStdString(); }
    void setStringValue(const std::string& value);
};
