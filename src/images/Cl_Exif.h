// The EXIF properties of one JPEG picture.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <memory>

namespace images {

/// The small picture that cameras embed.
constexpr int tagThumbnail = 20507;

/// Opens one picture, reads and writes its properties, takes out the small picture that cameras embed, saves it again.
/// May be used in several threads, each with an object of its own. Properties go by their standard number. Nothing
/// throws: a failure gives false and leaves the open picture as it was.
class Cl_Exif {
public:
    Cl_Exif();
    ~Cl_Exif();
    Cl_Exif(const Cl_Exif&) = delete;
    Cl_Exif& operator=(const Cl_Exif&) = delete;

    bool OpenFile(const QString& path);
    /// The same with a picture that is in memory.
    bool OpenBytes(const QByteArray& bytes);
    void CloseFile();
    /// True when the tag is there. By the type of the property: BYTE, SBYTE, UNDEFINED bytes (QByteArray); ASCII a text
    /// without closing zero (tags 36867 and 36868 a QDateTime); SHORT, SSHORT, LONG, SLONG, FLOAT lists of
    /// whole numbers; RATIONAL, SRATIONAL, DOUBLE lists of 32-bit words, numerator and denominator in turn. Tags 36864
    /// and 40960 are texts, tagThumbnail and 37500 (maker note) bytes.
    bool GetExifData(int tag, QVariant& value) const;
    /// Writes into the open picture, in memory: 270 (description) and 315 (artist) texts, 36867 (date taken) a
    /// QDateTime. Any other tag, and a date that is none, is refused.
    bool SetExifData(int tag, const QVariant& value);
    /// Writes the picture as JPEG with all its properties. `quality` 0 to 100, below 0 the encoder's own.
    bool SaveFile(const QString& path, int quality = -1);
    /// What SaveFile writes; empty when it cannot be made.
    QByteArray SavedBytes(int quality = -1) const;
    /// Writes the embedded picture of `path` to `destination`; false (and no file) when it has none.
    static bool ExtractThumbnail(const QString& path, const QString& destination);

private:
    struct Picture;
    std::unique_ptr<Picture> m_picture;
};

} // namespace images
