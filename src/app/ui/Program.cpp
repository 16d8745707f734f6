#include "app/ui/Program.h"

#include "app/ui/Icons.h"
#include "platform/ui/Keyboard.h"
#include "platform/ui/Readable.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QLoggingCategory>
#include <QTranslator>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(programLog, "herbora.program")

const QString declinedKey = u"association/refusee"_s;

/// Knows whether the user agreed to the association.
class ObservedAssociation : public platform::FileAssociation {
public:
    explicit ObservedAssociation(platform::FileAssociation& real) : m_real(real) {}
    QString openCommand() const override { return m_command = m_real.openCommand(); }
    bool write(const QString& executable) override
    {
        m_command = executable;
        return m_real.write(executable);
    }
    QString command() const { return m_command; }

private:
    platform::FileAssociation& m_real;
    mutable QString m_command;
};

/// What Qt's own French texts leave out: the kinds of files in a file dialog, the newer parts of the print dialog.
class MissingTexts : public QTranslator {
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        static const QHash<QByteArrayView, QString> kinds{
            {"Folder", u"Dossier"_s}, {"File", u"Fichier"_s},      {"%1 File", u"Fichier %1"_s},
            {"Drive", u"Disque"_s},   {"Shortcut", u"Raccourci"_s}, {"Alias", u"Alias"_s},
            {"Unknown", u"Inconnu"_s}};
        static const QHash<QByteArrayView, QString> printing{
            {"Double Sided Printing", u"Impression recto verso"_s},
            {"Off", u"Non"_s},
            {"Long side binding", u"Reliure sur le grand côté"_s},
            {"Short side binding", u"Reliure sur le petit côté"_s},
            {"Invalid Pages Definition", u"Pages mal indiquées"_s},
            {"Specify pages or ranges separated by commas. Ranges are specified by two numbers separated by a hyphen. E.g: 3,5-7,9 "
             "prints pages 3, 5, 6, 7 and 9.",
             u"Pages ou suites de pages séparées par des virgules ; une suite s'écrit avec un tiret. 3,5-7,9 imprime les pages 3, 5, "
             "6, 7 et 9."_s},
            {"%1 does not follow the correct syntax. Please use ',' to separate ranges and pages, '-' to define ranges and make "
             "sure ranges do not intersect with each other.",
             u"« %1 » n'est pas une suite de pages. Séparez les pages par des virgules ; une suite s'écrit avec un tiret, et deux "
             "suites n'ont pas de page commune."_s},
            {"Duplex Settings Conflicts", u"Recto verso impossible"_s},
            {"There are conflicts in duplex settings. Do you want to fix them?",
             u"L'imprimante ne permet pas ce recto verso. Faut-il le corriger ?"_s}};
        const QByteArrayView where(context);
        if (where == "QAbstractFileIconProvider")
            return kinds.value(QByteArrayView(source));
        return where.startsWith("QPrint") ? printing.value(QByteArrayView(source)) : QString();
    }
};

} // namespace

void useFrench()
{
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    // Without it the buttons of Qt's own dialogs are in English.
    auto* texts = new QTranslator(qApp);
    if (texts->load(u"qtbase_fr"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(texts);
    else
        qCWarning(programLog) << "no French texts for Qt in" << QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    QCoreApplication::installTranslator(new MissingTexts(qApp));
}

void prepareApplication()
{
    useFrench();
    QApplication::setApplicationName(u"herbora"_s);
    QApplication::setApplicationVersion(u"" HERBORA_VERSION ""_s);
    QApplication::setDesktopFileName(u"org.herbora.Herbora"_s);
    platform::keepReadable(followPalette);
    platform::openMenusByShiftF10();
    QApplication::setWindowIcon(programIcon());
}

Program::Program(const ProgramOptions& options, platform::Dialogues& dialogues)
    : m_dialogues(dialogues), m_settings(options.settingsFile),
      m_session({m_dialogues, m_clock, m_settings, options.applicationFolder, u"" HERBORA_VERSION ""_s}),
      m_state(options.stateFile), m_window(m_session, m_runner, m_dialogues, m_state)
{
}

void Program::checkAssociation(platform::FileAssociation& association)
{
    if (m_state.value(declinedKey).toBool())
        return;
    ObservedAssociation observed(association);
    m_session.checkAssociation(observed);
    const QString executable = m_session.surroundings().applicationFolder + u"/herbora"_s;
    if (observed.command() != executable)
        m_state.setValue(declinedKey, true);
}

void Program::openStartFile(const QString& file)
{
    const QString path = m_session.startFile(file);
    if (!path.isEmpty())
        m_window.commands().openPath(path);
}

void Program::startUp(platform::FileAssociation& association, const QString& file)
{
    checkAssociation(association);
    openStartFile(file);
}

} // namespace app
