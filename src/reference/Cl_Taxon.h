// The list of plant names: ranks, full names, synonyms.
#pragma once

#include "reference/ReferenceList.h"

namespace reference {

/// Owns every rule of the table `Taxons`.
///
/// The rank of a row is the first of its four ancestor columns (`ID Famille`, `ID Genre`, `ID Espèce`, `ID Infra`)
/// that holds its own identifier; so the rows under a taxon of rank r, itself included, are those whose column
/// of rank r holds it. Ranks are 1 to 4; 0 stands for none. Failures are trapped: -1 for identifiers,
/// "Indetermineae" for names, false for Save.
class Cl_Taxon : public ReferenceList {
public:
    explicit Cl_Taxon(const ReferenceContext& context);

    /// The form of a new taxon under a parent (0: a family), beginning with a name where one is given. It becomes the
    /// current record.
    bool Add(qint32 parent, const QString& name = {});
    /// The form of a new taxon of a rank whose parent is still to be chosen in it.
    bool AddOfRank(int rank, const QString& name = {});
    bool Edit(qint32 id);
    bool Delete(const QList<qint32>& ids, bool silent = false);
    bool confirmDelete(const QList<qint32>& ids) const; ///< The question alone.
    /// Moving these onto the target makes synonyms, which opens forms.
    bool movesIntoSynonymy(const QList<qint32>& ids, qint32 target) const;
    void Move(const QList<qint32>& ids, qint32 target);
    /// Names that match a pattern, in order; `rank` -1 for any.
    Found SearchTaxons(const QString& pattern, int rank = -1) const;
    void RefrsTaxon() { reread(); }
    qint32 IDctaxon() const { return current(); }
    void setIDctaxon(qint32 id) { position(id); }
    QString Auteurs(qint32 id) const;
    QString Memo(qint32 id) const;
    int OrdreTaxon(qint32 id) const;           ///< Rank of a row.
    static QString Ordre(int rank);            ///< "Famille" …, "< Indéfini >" otherwise.
    /// A name as it is kept: proper case down to the genus, lower case below.
    static QString storedName(const QString& name, int rank);
    static QString champ(int rank);            ///< "[ID Famille]" …, empty otherwise.
    qint32 IDRangTaxon(qint32 id, int rank) const;
    qint32 IDparent(qint32 id) const;
    qint32 IDValid(qint32 id, bool follow) const;
    /// Modes: 0 full name, 1 name at its rank, 2 with authors, 3 to 5 with the accepted name, 6 its synonyms.
    QString NomTaxon(qint32 id, int mode) const;
    /// A row that clashes, or 0. `auteurs` "-1" leaves the authors out of the comparison.
    qint32 isNewTaxon(const QString& taxon, qint32 parent, const QString& auteurs) const;
    /// Fills the form of a taxon (0: a new one under `parent`); gives its title.
    QString FillTabEdit(editing::Cl_Editions& form, qint32 id, qint32 parent);
    bool Save(editing::Cl_Editions& form);
    QString TaxonsSynonymes(qint32 id, const QString& separator) const;

    /// The synonymy dialog on a name and the one under which it is sunk; true when it was written.
    bool EditSynonymie(qint32 synonym, qint32 valid);
    bool clSynonyme_Delete(qint32 synonym); ///< Asks, then takes the synonymy off.
    bool clSynonyme_Edit(qint32 synonym);
    /// Statement of the synonyms of a taxon; empty when it has none.
    QString SQLSynonymes(qint32 id) const;
    /// Statement of the children of a node (rank 0: the families).
    QString SQLChildren(int rank, qint32 id) const;
    /// Its rows in the order of the names: (`ID Taxons`, `Taxon`, `ID Valid`). Failures are jet::Error.
    std::unique_ptr<jet::Recordset> RecordSetTaxons(int rank, qint32 id) const;

private:
    int RangTaxon() const; ///< Of the current record.
    bool ValidNomTaxon(const QString& taxon, const QString& auteurs, qint32 parent, qint32 currentId);
    void RefrsNomComplet(qint32 id);
    QList<qint32> IDSynonymes(qint32 id) const;
    bool moveOne(qint32 moved, qint32 target, const QList<qint32>& all, bool& asked);
    QString askMove(const QList<qint32>& ids, qint32 moved, qint32 target) const;
    std::optional<QList<qint32>> families() const;
    bool sinks(qint32 moved, qint32 target) const;
    QString fillForm(editing::Cl_Editions& form, qint32 id, qint32 parent, int rank);
    void addParents(editing::Cl_Editions& form, qint32 above, int rank, bool known);
    bool editNew(qint32 parent, int rank, const QString& name, bool placed);
    bool hasPlace(editing::Cl_Editions& form, int rank, qint32 parent) const;
    int rankOfForm(const editing::Cl_Editions& form) const;
    qint32 parentOfForm(const editing::Cl_Editions& form, int rank) const;
    qint32 saveWithNames(const editing::Cl_Editions& form, qint32 id, int rank, qint32 parent);
    qint32 writeForm(const editing::Cl_Editions& form, qint32 id, int rank, qint32 parent);
};

/// Key of the form's own fields.
inline const QString fieldRank = QStringLiteral("@@RANGTAXON@@");
inline const QString fieldValid = QStringLiteral("@@TAXONVALID@@");
inline const QString fieldSynonyms = QStringLiteral("@@SYNONYMES@@");

} // namespace reference
