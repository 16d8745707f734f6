#include "map/ui/CalibrationBar.h"

#include "editing/FieldInput.h"
#include "editing/Formats.h"

#include <QGridLayout>

namespace map {

using namespace Qt::StringLiterals;

namespace {

const QString prompt = u"Sélectionnez les points de calibration."_s;

QPalette warningPalette(const QWidget& widget, bool warning)
{
    QPalette palette = widget.parentWidget() ? widget.parentWidget()->palette() : widget.palette();
    const bool dark = palette.color(QPalette::Window).lightness() < 128;
    if (warning)
        palette.setColor(QPalette::WindowText, dark ? QColor(0xff, 0x9c, 0x92) : QColor(0xb3, 0x1b, 0x1b));
    return palette;
}

} // namespace

/// Answers the form of the calibration with what stands in the bar.
class CalibrationBar::Answers : public editing::FormDialogue {
public:
    explicit Answers(CalibrationBar& bar) : m_bar(bar) {}

    bool edit(const QString&, editing::Cl_Editions& form,
              const std::function<bool(editing::Cl_Editions&)>& save) override
    {
        const auto& [first, second] = m_bar.m_marks;
        const std::array lines{first.longitude, first.latitude, second.longitude, second.latitude};
        for (int i = 0; i < 4; ++i)
            editing::FieldInput().take(*form.Item(i), lines[size_t(i)]->text());
        const bool saved = !showError(form, lines) && save(form);
        if (!saved)
            showError(form, lines);
        return saved;
    }

private:
    bool showError(editing::Cl_Editions& form, const std::array<QLineEdit*, 4>& lines)
    {
        for (int i = 0; i < 4; ++i) {
            const QString error = form.Item(i)->TextError();
            if (error.isEmpty())
                continue;
            m_bar.m_note->setText(form.Item(i)->Caption() + u" : "_s + error);
            m_bar.m_note->setPalette(warningPalette(*m_bar.m_note, true));
            lines[size_t(i)]->setFocus();
            return true;
        }
        return false;
    }

    CalibrationBar& m_bar;
};

CalibrationBar::CalibrationBar(MapCanvas& canvas, QWidget* parent) : QWidget(parent), m_canvas(canvas)
{
    setObjectName(u"calibration"_s);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(8, 6, 8, 6);
    m_note = new QLabel(prompt, this);
    m_note->setObjectName(u"calibrationNote"_s);
    m_note->setTextFormat(Qt::PlainText);
    grid->addWidget(m_note, 0, 0, 1, 9);
    for (int i = 0; i < 2; ++i)
        m_marks[size_t(i)] = makeMark(i + 1, *grid);
    m_confirm = new QPushButton(u"&Calibrer"_s, this);
    m_confirm->setObjectName(u"calibrer"_s);
    auto* cancel = new QPushButton(u"Ann&uler"_s, this);
    cancel->setObjectName(u"annulerCalibration"_s);
    grid->addWidget(m_confirm, 1, 9);
    grid->addWidget(cancel, 2, 9);
    grid->setColumnStretch(6, 1);
    grid->setColumnStretch(8, 1);
    connect(m_confirm, &QPushButton::clicked, this, &CalibrationBar::confirmed);
    connect(cancel, &QPushButton::clicked, this, &CalibrationBar::cancelled);
    connect(&m_canvas, &MapCanvas::marksChanged, this, [this] {
        showMarks();
        for (int mark = 0; mark < m_canvas.marks().size(); ++mark)
            propose(mark);
    });
}

CalibrationBar::Mark CalibrationBar::makeMark(int number, QGridLayout& grid)
{
    const QString suffix = QString::number(number);
    const auto pixels = [&](const QString& axis) {
        auto* box = new QDoubleSpinBox(this);
        box->setObjectName(axis + suffix);
        box->setAccessibleName(u"Point "_s + suffix + u", "_s + axis + u" en pixels"_s);
        box->setDecimals(1);
        box->setRange(-1, 1e6);
        box->setSpecialValueText(u"—"_s);
        connect(box, &QDoubleSpinBox::valueChanged, this, &CalibrationBar::takeMarks);
        return box;
    };
    Mark mark{pixels(u"X"_s), pixels(u"Y"_s), nullptr, nullptr};
    mark.longitude = makeLine(u"longitude"_s + suffix, u"Longitude X"_s + suffix,
                              u"Indiquez la longitude du point %1 de calibration (Décimale ou [W-E]ddd°mm'ss.000)"_s.arg(number));
    mark.latitude = makeLine(u"latitude"_s + suffix, u"Latitude Y"_s + suffix,
                             u"Indiquez la latitude du point %1 de calibration (Décimale ou [N-S]dd°mm'ss.000)"_s.arg(number));
    int column = 0;
    const auto add = [&](const QString& caption, QWidget* field) {
        auto* label = new QLabel(caption, this);
        label->setBuddy(field);
        grid.addWidget(label, number, column++);
        grid.addWidget(field, number, column++);
    };
    grid.addWidget(new QLabel(u"Point "_s + suffix, this), number, column++);
    add(u"X"_s, mark.x);
    add(u"Y"_s, mark.y);
    // Captions stand beside the two fields that stretch.
    add(u"Longitude X"_s + suffix, mark.longitude);
    add(u"Latitude Y"_s + suffix, mark.latitude);
    return mark;
}

QLineEdit* CalibrationBar::makeLine(const QString& name, const QString& caption, const QString& help)
{
    auto* line = new QLineEdit(this);
    line->setObjectName(name);
    line->setAccessibleName(caption);
    line->setAccessibleDescription(help);
    line->setToolTip(help);
    line->setMinimumWidth(line->fontMetrics().horizontalAdvance(u"W000°00'00.0000  "_s));
    connect(line, &QLineEdit::textChanged, this, &CalibrationBar::showState);
    return line;
}

void CalibrationBar::begin()
{
    for (const Mark& mark : m_marks) {
        mark.longitude->clear();
        mark.latitude->clear();
    }
    m_canvas.setMarks({});
    showMarks();
}

void CalibrationBar::showMarks()
{
    for (qsizetype i = 0; i < 2; ++i) {
        const bool set = i < m_canvas.marks().size();
        const QPointF at = set ? m_canvas.marks()[i] : QPointF(-1, -1);
        const QSignalBlocker quietX(m_marks[size_t(i)].x), quietY(m_marks[size_t(i)].y);
        m_marks[size_t(i)].x->setValue(at.x());
        m_marks[size_t(i)].y->setValue(at.y());
    }
    showState();
}

void CalibrationBar::takeMarks()
{
    QList<QPointF> marks;
    for (const Mark& mark : m_marks) {
        if (mark.x->value() >= 0 && mark.y->value() >= 0)
            marks << QPointF(mark.x->value(), mark.y->value());
    }
    m_canvas.setMarks(marks);
    showState();
}

/// What the calibration that stands says of a mark that was just set.
void CalibrationBar::propose(int mark)
{
    if (!m_canvas.isCalibrated())
        return;
    const Mark& fields = m_marks[size_t(mark)];
    const QPointF at = m_canvas.marks()[mark];
    if (fields.longitude->text().isEmpty())
        fields.longitude->setText(editing::LongitudeToText(columnToLongitude(at.x(), m_canvas.frame(), m_canvas.pictureSize())));
    if (fields.latitude->text().isEmpty())
        fields.latitude->setText(editing::LatitudeToText(rowToLatitude(at.y(), m_canvas.frame(), m_canvas.pictureSize())));
}

void CalibrationBar::showState()
{
    const bool marked = m_canvas.marks().size() == 2;
    bool typed = true;
    for (const Mark& mark : m_marks)
        typed = typed && !mark.longitude->text().trimmed().isEmpty() && !mark.latitude->text().trimmed().isEmpty();
    m_confirm->setEnabled(marked && typed);
    m_note->setPalette(warningPalette(*m_note, false));
    m_note->setText(!marked ? prompt
                    : typed ? u"Les points peuvent encore être déplacés et leurs coordonnées corrigées."_s
                            : u"Indiquez les coordonnées des deux points."_s);
}

bool CalibrationBar::calibrate(reference::Cl_Localité& places, qint32 map)
{
    if (m_canvas.marks().size() != 2)
        return false;
    const QPointF first = m_canvas.marks()[0], second = m_canvas.marks()[1];
    const QSize picture = m_canvas.pictureSize();
    Answers answers(*this);
    return places.Calibrate(
        map, first.x(), second.x(), first.y(), second.y(),
        {0, 0, double(picture.width()), double(picture.height())}, &answers);
}

} // namespace map
