// The picture of a record, in the tab "Viewer" of the record editor.
#pragma once

#include <QList>
#include <QVariant>
#include <QWidget>
#include <functional>

namespace editing {

/// A record as far as its pictures go.
struct PicturedRecord {
    struct Picture {
        QString column;  ///< Of the picture field in the module's table.
        QString caption; ///< Of that field.
        QString file;    ///< As the field holds it now, saved or not: a name in a folder of pictures, or a path.
        bool operator==(const Picture&) const = default;
    };
    QString module;
    qint32 id = 0;       ///< 0 for a record that was never saved.
    qint32 individu = 0; ///< 0 for an individual that was never saved.
    bool readOnly = false; ///< Locked, or the project is: nothing can be taken over.
    QList<Picture> pictures; ///< One for each picture field that names a file, in the order of the form.

    bool operator==(const PicturedRecord&) const = default;
};

/// What a picture tells of the moment and the place in which it was taken. Invalid: it says nothing.
struct PictureFacts {
    QVariant date;      ///< Text, as a date field takes it: "2001/03/06" or with the time.
    QVariant longitude; ///< Decimal degrees, east positive.
    QVariant latitude;  ///< Decimal degrees, north positive.
};

/// The record editor makes one (EditorSurroundings::makePictures), shows it only while the current record has a picture,
/// and tells it which. What it shows belongs to no form: it may outlive the record shown, not the project.
class PicturePane : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// Shows the pictures of a record instead of what was shown; a record without pictures empties the pane. Called
    /// when another record becomes the current one, and when its picture fields change while the tab is shown. Large
    /// files are best read beside the windows.
    virtual void showRecord(const PicturedRecord& record) = 0;

    /// Set by the editor. Captions of the fields of the current record that could take the facts over: the date its
    /// first date field, the position its first pair of longitude and latitude. Empty: none, or it is locked.
    std::function<QStringList(const PictureFacts& facts)> fitting;
    /// Set by the editor. Types the facts into those fields, as the user might; they are saved with the record. Gives
    /// the captions of the fields that were filled. Nothing is asked: to be called because the user said so.
    std::function<QStringList(const PictureFacts& facts)> offer;
};

} // namespace editing
