// The list of places, and the maps that lie in the same table.
#pragma once

#include "reference/ReferenceList.h"

#include <array>

namespace reference {

/// Owns every rule of the table `Localités`.
///
/// `CodeRegion` of a row is the code of its parent, "/", and its own identifier (3/7/42); a top row's code is its identifier
/// alone. `ID Type` is the depth at creation (0 for the top), negative for a map. `Nom Entier` is the parent's name,
/// " - ", and its own. Coordinates are decimal degrees, east and north positive. The world is row 0. Failures are
/// trapped: "Monde" for names, -1 or 0 for identifiers.
class Cl_Localité : public ReferenceList {
public:
    explicit Cl_Localité(const ReferenceContext& context, const QString& applicationFolder = {});

    /// A map: its frame are the coordinates of its picture's left, top, right and bottom bounds, as calibration writes
    /// them; all 0 for a picture that is not calibrated. Gives its identifier, 0 on failure.
    qint32 AddCarte(qint32 parent, const QString& name, const std::array<double, 4>& frame, const QString& picture);
    /// Asks the coordinates of two picture points and writes the frame: the geographic coordinates of the picture's
    /// bounds (`bounds`: left, top, right, bottom in picture coordinates). `form` (null: that of the context) asks.
    bool Calibrate(qint32 id, double x1, double x2, double y1, double y2, const std::array<double, 4>& bounds,
                   editing::FormDialogue* form = nullptr);
    /// Asks for a new place; columns that are known already are proposed.
    bool Add(qint32 parent, const QList<QPair<QString, QVariant>>& proposed = {});
    bool Edit(qint32 id);
    bool Delete(const QList<qint32>& ids, bool silent = false);
    bool confirmDelete(const QList<qint32>& ids) const; ///< The question alone.
    Found SearchLocalités(const QString& pattern) const;
    void Move(const QList<qint32>& ids, qint32 target); ///< Target 0: the world.
    qint32 IDparent(qint32 id) const;
    QString CodeLocalité(qint32 id) const;
    void RefrsLocs() { reread(); }
    /// `parent` > 0 its children, 0 the top level, below 0 the whole table.
    std::unique_ptr<jet::Recordset> RecordSetLocalités(qint32 parent, const QString& pattern = {}) const;
    QString SQLLocalités(qint32 parent, const QString& pattern = {}) const;
    qint32 IDcLocalité() const { return current(); }
    void setIDcLocalité(qint32 id) { position(id); }
    QString TypeLocalité(qint32 id) const; ///< "Carte" or "Localité".
    /// Modes: 0 name, 1 full name, 2 GPS reference; a map always its name.
    QString NomLocalité(qint32 id, int mode) const;
    QString NomCarte(qint32 id) const; ///< Picture of a map; of the world "Globe.gif" in the application folder.
    struct Coordinates {
        QVariant LongDD, LatDD, Altitude, SizeLongDD, SizeLatDD;
    };
    Coordinates Coordonnées(qint32 id) const; ///< Longitude and latitude are Null where the place was given none.
    QString FillTabEdit(editing::Cl_Editions& form, qint32 id);
    /// Writes the form of the current record, or of a new row under `parent` when there is none.
    bool Save(editing::Cl_Editions& form, qint32 parent);

private:
    bool hasPosition() const; ///< Of the current record.
    bool isHalfPlaced(editing::Cl_Editions& form) const;
    QString codeUnder(qint32 parent, qint32 id) const;
    QString fullName(const QString& code, const QString& name) const;
    void RefrsNomEntier(qint32 id);
    qint32 saveRow(const editing::Cl_Editions& form, qint32 id, qint32 parent);
    void moveSubtree(qint32 moved, qint32 target);
    QString question(const QList<qint32>& ids) const;

    QString m_folder;
};

} // namespace reference
