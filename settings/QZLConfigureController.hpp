#pragma once

#include "platform/ui/WindowController.hpp"

#include <QtCore/QPointer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <string>

class QZLHotLink;

/// The framework's controller of a settings sheet: fills in what the sheet says of the saver, resets to the defaults,
/// sends a saved error report, and on closing stores the values and tells every view that they changed. A saver derives
/// from it and adds its own controls. Main thread. Nothing in here reports an error: a missing outlet skips its step, a
/// missing information value is written as an absent one, an address that is none opens nothing.
class QZLConfigureController : public platform::WindowController {
public:
    /// Stores the values, posts that they were stored, and ends the sheet.
    virtual void closeSheet();
    /// Shows the defaults. Running views keep what they have until the sheet is closed.
    void resetToDefaults();
    void sendEmail();
    void openWebsite();
    /// Opens a mail with the saved error report, and forgets the report, sent or not.
    void sendErrorReport();

protected:
    /// The form of the saver's bundle with that name.
    explicit QZLConfigureController(std::string formName);

    void windowDidLoad() override;
    /// Shown again, the sheet shows what is stored by then.
    void windowWillAppear() override { loadValues(); }

    /// Fills the controls with the stored values; a saver calls the base first.
    virtual void loadValues();
    /// Writes the controls' values into the store; a saver calls the base last.
    virtual void storeValues();

private:
    void setErrorReportVisibility();

    QPointer<QLabel> _appVersionCopyright;
    QPointer<QZLHotLink> _mailto;
    QPointer<QZLHotLink> _website;
    QPointer<QPushButton> _errorReport;
};
