// A project with a field of every type, and what controls and windows work with.
#pragma once

#include "editing/DescriptorLists.h"
#include "editing/ProjectRecords.h"
#include "editing/ui/FormDialog.h"
#include "editing/ui/RecordEditorWindow.h"
#include "reference/ProjectNames.h"
#include "support/Project.h"

#include <QSignalSpy>
#include <QTest>

namespace support {

/// The module "Essais" has a field of every type, named after it ("Réel", "ListeSimple" …). Individual 1 has the
/// determinations 1 and 2 and a record of "Essais"; individuals 2 and 3 have none.
class EditorTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// A picture of the widget, where the environment variable HERBORA_PICTURES names a folder.
    static void picture(QWidget& widget, const QString& name);
    editing::EditingTools tools();
    /// The form of a record of "Essais".
    std::unique_ptr<editing::Cl_Editions> form(qint32 individu, qint32 id);

    TestProject project;
    qint32 counter = 0;
    editing::EditingContext context;
    std::unique_ptr<reference::Cl_Taxon> taxa;
    std::unique_ptr<reference::Cl_Localité> places;
    std::unique_ptr<reference::Cl_Collecteur> people;
    std::unique_ptr<data::RecordRules> rules;
    std::unique_ptr<editing::ReferenceSearch> search;
    std::unique_ptr<editing::DescriptorLists> lists;
    std::unique_ptr<editing::FieldInput> input;
    editing::ControlWorld world;
};

} // namespace support
