#pragma once

#include <QtCore/QString>
#include <QtGui/QImage>
#include <QtWidgets/QWidget>
#include <filesystem>

namespace platform {

/// A picture of the bundle that fills its place, cut where the shapes differ, with a title written on it in twice the
/// usual size. Without the picture there is only the title. Main thread.
class PictureView final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString picture READ picture WRITE setPicture)
    Q_PROPERTY(QString title READ title WRITE setTitle)

public:
    PictureView(std::filesystem::path directory, QWidget* parent);

    /// The picture's path in the bundle.
    const QString& picture() const { return _picture; }
    void setPicture(const QString& picture);
    const QString& title() const { return _title; }
    void setTitle(const QString& title);

    /// Six lines of text high, or half of that where room is scarce, and as wide as the title needs.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {sizeHint().width(), sizeHint().height() / 2}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFont titleFont() const;

    const std::filesystem::path _directory;
    QString _picture;
    QString _title;
    QImage _image;
};

}  // namespace platform
