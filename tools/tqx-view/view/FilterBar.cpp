#include "view/FilterBar.h"

#include "view/Colours.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

#include <exception>

namespace tqx::view
{

FilterBar::FilterBar(QWidget* parent)
    : QWidget(parent), m_from(new QLineEdit(this)), m_to(new QLineEdit(this)),
      m_condition(new QLineEdit(this)), m_count(new QLabel(this)), m_error(new QLabel(this))
{
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 4);
    const auto add = [&](int column, const QString& text, QLineEdit* edit, const char* name) {
        auto* label = new QLabel(text, this);
        label->setBuddy(edit);
        edit->setObjectName(name);
        edit->setClearButtonEnabled(true);
        layout->addWidget(label, 0, column);
        layout->addWidget(edit, 0, column + 1);
        connect(edit, &QLineEdit::returnPressed, this, &FilterBar::apply);
        // The button that clears a field takes effect at once.
        connect(edit, &QLineEdit::textChanged, this, [this](const QString& now) {
            if (now.isEmpty())
                apply();
        });
    };
    add(0, tr("F&rom"), m_from, "from");
    add(2, tr("&to"), m_to, "to");
    add(4, tr("&Condition"), m_condition, "condition");
    m_from->setPlaceholderText(tr("start of the log"));
    m_to->setPlaceholderText(tr("end of the log"));
    m_condition->setPlaceholderText(tr("for example  NrSV >= 8 and not has COG"));
    const QString times = tr("GPS time, as 2026-01-06T12:00:00 or as week and seconds 2400:216000; "
                             "Enter applies it");
    m_from->setToolTip(times);
    m_to->setToolTip(times);
    m_condition->setToolTip(tr("Compares fields in their units, with names where they have some; "
                               "Enter applies it"));
    const int width = fontMetrics().horizontalAdvance("2026-01-06T12:00:00.000 ") + 40;
    m_from->setFixedWidth(width);
    m_to->setFixedWidth(width);
    layout->addWidget(m_count, 0, 6);
    layout->addWidget(m_error, 1, 0, 1, 7);
    layout->setColumnStretch(5, 1);
    m_error->setWordWrap(true);
    m_error->setObjectName("filterError");
    m_error->hide();
}

void FilterBar::setLog(std::shared_ptr<const MessageLog> log)
{
    m_log = std::move(log);
    setEnabled(m_log != nullptr);
}

void FilterBar::setFilter(const MessageFilter& filter)
{
    const QSignalBlocker noFrom(m_from);
    const QSignalBlocker noTo(m_to);
    const QSignalBlocker noCondition(m_condition);
    const auto text = [&](const std::optional<int64_t>& time) {
        return time && m_log ? m_log->timeText(*time, false) : QString();
    };
    m_from->setText(text(filter.from));
    m_to->setText(text(filter.to));
    m_condition->setText(filter.condition);
}

void FilterBar::focusCondition()
{
    m_condition->setFocus();
    m_condition->selectAll();
}

std::optional<int64_t> FilterBar::timeOf(QLineEdit& edit) const
{
    if (edit.text().trimmed().isEmpty())
        return std::nullopt;
    return m_log->parseTime(edit.text());
}

void FilterBar::apply()
{
    if (!m_log)
        return;
    m_error->hide();
    try {
        Q_EMIT changed(timeOf(*m_from), timeOf(*m_to), m_condition->text().trimmed());
    } catch (const std::exception& error) {
        showError(QString::fromUtf8(error.what()));
    }
}

void FilterBar::showCount(uint64_t selected, uint64_t all, bool isSearching)
{
    const QLocale locale;
    QString text = selected == all ? tr("%1 messages").arg(locale.toString(qulonglong{all}))
                                   : tr("%1 of %2 messages")
                                         .arg(locale.toString(qulonglong{selected}))
                                         .arg(locale.toString(qulonglong{all}));
    if (isSearching)
        text += tr(", searching…");
    m_count->setText(text);
}

void FilterBar::showError(const QString& reason)
{
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, faultColour(palette()));
    m_error->setPalette(colours);
    m_error->setText(reason);
    m_error->show();
}

} // namespace tqx::view
