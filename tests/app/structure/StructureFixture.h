// A project whose structure is edited and saved, as the editor does.
#pragma once

#include "app/structure/StructureEditing.h"
#include "app/structure/StructureReview.h"
#include "app/structure/StructureSaving.h"
#include "data/FieldType.h"
#include "data/Verification.h"
#include "support/Project.h"

namespace support {

using namespace Qt::StringLiterals;

class StructureProject : public TestProject {
public:
    StructureProject()
    {
        create();
        editing = std::make_unique<app::StructureEditing>(session);
    }

    int module(const QString& name) const
    {
        const app::DraftModule* known = editing->draft().moduleNamed(name);
        return known ? known->id : 0;
    }
    int field(const QString& name, const QString& caption) const
    {
        const app::DraftModule* known = editing->draft().moduleNamed(name);
        const app::DraftField* one = known ? known->fieldNamed(caption) : nullptr;
        return one ? one->id : 0;
    }
    int addModule(const QString& name)
    {
        const QString title = editing->caption() + u": Ajout d'un module"_s;
        dialogues.expectInput(title, u"Indiquer le nom du Module"_s, u"Nouveau module"_s, name);
        return editing->addModule();
    }
    int addField(const QString& name, const QString& caption, int type)
    {
        const int id = editing->addField(module(name));
        EXPECT_TRUE(editing->renameField(id, caption)) << caption.toStdString();
        EXPECT_EQ(editing->setType(id, type), type != data::Texte) << caption.toStdString();
        return id;
    }
    app::StructureReview review()
    {
        platform::NoProgression quiet;
        return app::reviewOf(db(), editing->plan(), quiet);
    }
    /// As the window does it: looked at, saved, read again.
    bool save()
    {
        const app::StructureReview found = review();
        EXPECT_FALSE(found.forbids()) << (found.findings.isEmpty() ? std::string()
                                                                   : found.findings.first().text().toStdString());
        const bool saved = app::saveStructure(session, editing->plan(), found.losesData(), progression);
        if (saved)
            editing->reload();
        return saved;
    }
    QStringList findings() { return data::verify(db(), session.modules()); }
    /// What the file says of a module: its rows of the dictionary, without their numbers.
    QStringList definitions(const QString& name = {})
    {
        const QString which = name.isEmpty() ? QString() : u" WHERE NomModule="_s + u'"' + name + u'"';
        return rows(u"SELECT [Type], [Index], [Table], [Validation], NomModule, NomObjet, [Version], [Flags], TextHelp, "
                    "ModuleConnexion FROM PGTableDefs"_s
                    + which + u" ORDER BY NomModule, [Type], [Index], [Table]"_s);
    }

    std::unique_ptr<app::StructureEditing> editing;
};

} // namespace support
