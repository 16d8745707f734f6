// The reference classes on a real project, with a form that a test fills.
#pragma once

#include "reference/ProjectNames.h"
#include "support/Project.h"

#include <deque>

/// Fills forms as written beforehand: each entry sets values by key, then confirms (or cancels with an empty one).
class ScriptedForm : public editing::FormDialogue {
public:
    using Values = QList<QPair<QString, QVariant>>;
    struct Step {
        Values values;
        bool confirm = true;
    };
    std::deque<Step> steps;
    QStringList titles;

    bool edit(const QString& title, editing::Cl_Editions& form,
              const std::function<bool(editing::Cl_Editions&)>& save) override
    {
        titles << title;
        if (steps.empty()) {
            ADD_FAILURE() << "nobody expected the form " << title.toStdString();
            return false;
        }
        const Step step = steps.front();
        steps.pop_front();
        for (const auto& [key, value] : step.values) {
            if (editing::Cl_Edition* field = form.Item(key))
                field->setValue(value);
            else
                ADD_FAILURE() << "no field " << key.toStdString();
        }
        return step.confirm && save(form);
    }
};

class ReferenceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        context.emplace(reference::ReferenceContext{project.db(), project.clock, project.dialogues, {}, &form});
        context->editing.nextId = [this] { return ++counter; };
        taxa = std::make_unique<reference::Cl_Taxon>(*context);
        places = std::make_unique<reference::Cl_Localité>(*context, QStringLiteral("/opt/herbora"));
        people = std::make_unique<reference::Cl_Collecteur>(*context);
    }
    void TearDown() override
    {
        EXPECT_TRUE(form.steps.empty());
        taxa.reset();
        places.reset();
        people.reset();
    }

    support::TestProject project;
    ScriptedForm form;
    qint32 counter = 0;
    std::optional<reference::ReferenceContext> context;
    std::unique_ptr<reference::Cl_Taxon> taxa;
    std::unique_ptr<reference::Cl_Localité> places;
    std::unique_ptr<reference::Cl_Collecteur> people;
};
