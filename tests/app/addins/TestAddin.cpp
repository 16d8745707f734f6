// One add-in in many kinds: TEST_KIND says how it behaves.
#include "addin/Base.h"
#include "addin/gtAddin.h"

#include <QObject>
#include <stdexcept>

#ifndef TEST_IID
#define TEST_IID HerboraPlugin_iid
#endif

using namespace Qt::StringLiterals;

namespace {

bool isKind(const char* kind)
{
    return qstrcmp(kind, TEST_KIND) == 0;
}

/// Leaves a trace of the library having been loaded.
struct Trace {
    Trace() { qputenv("HERBORA_TEST_LOADED_" TEST_KIND, "1"); }
} trace;

addin::ChpEditionPtr field(int type, const QString& column, const QString& caption)
{
    auto chp = std::make_shared<addin::ChpEdition>();
    chp->ctype = type;
    chp->champ = column;
    chp->Caption = caption;
    return chp;
}

class Module : public addin::gtAddin {
public:
    QString Version() const override { return qEnvironmentVariable("HERBORA_TEST_VERSION", u"1"_s); }
    QString NomModule() const override
    {
        return isKind("reserve") ? u"Taxons"_s : isKind("double") ? u"déterminations"_s : u"Essai"_s;
    }
    QString NomObjet() const override { return u"Essai "_s + Version(); }
    bool IndividuMixteUnique() const override { return true; }
    bool RaiseEvents() const override { return true; }

    addin::TabEditions GetTabEditions() override
    {
        if (isKind("champs"))
            throw std::runtime_error("pas de champs");
        const bool second = Version() == u"2";
        addin::TabEditions fields{field(3, u"Code"_s, u"Code "_s + Version()), field(12, u"État"_s, u"État"_s),
                                  field(second ? 5 : 3, u"Taille"_s, u"Taille"_s)};
        fields[0]->ChampMixteUnique = true;
        fields[0]->AllowNull = false;
        fields[0]->TextMask = u"AA-99"_s;
        fields[1]->Descripteurs = QStringList{u"bon"_s, u"mauvais"_s};
        if (second)
            fields << field(17, u"ID Déterminations"_s, u"Nom retenu"_s);
        if (isKind("regle"))
            fields[0]->ValidationRule = u"> > <"_s;
        return fields;
    }

    void ItemAction(const QString&, const QVariantList&, bool&) override { throw 42; }
};

} // namespace

class TestAddin : public QObject, public addin::Plugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TEST_IID)
    Q_INTERFACES(addin::Plugin)
public:
    int InterfaceVersion() const override { return isKind("perime") ? 3 : addin::interfaceVersion; }
    addin::gtAddin* Connexion(addin::Base* host) override
    {
        if (isKind("lance"))
            throw std::runtime_error("rien ne va");
        if (isKind("etrange"))
            throw 42;
        host->GetFileName();
        return isKind("rien") ? nullptr : &m_module;
    }

private:
    Module m_module;
};

#include "TestAddin.moc"
