#include "support/dialogscript.h"

#include "server/kelvafilecopy.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QProgressDialog>
#include <QTest>
#include <QTextDocument>

DialogScript::DialogScript()
{
    connect(&m_timer, &QTimer::timeout, this, &DialogScript::look);
    m_timer.start(5);
}

DialogScript::~DialogScript()
{
    if (!problems().isEmpty())
        QTest::qFail(qPrintable(problems()), __FILE__, __LINE__);
}

void DialogScript::expectBox(const QString &title, const QString &textPart,
                             QMessageBox::StandardButton answer)
{
    m_entries.append({true, title, textPart, answer, true, {}});
}

void DialogScript::expectDialog(const QString &title, bool accept, std::function<void(QWidget *)> act)
{
    m_entries.append({false, title, QString(), QMessageBox::NoButton, accept, std::move(act)});
}

QString DialogScript::problems() const
{
    QStringList problems = m_problems;
    for (const Entry &entry : m_entries)
        problems << "did not come: " + entry.title + ": " + entry.textPart;
    return problems.join("; ");
}

void DialogScript::look()
{
    QWidget *window = QApplication::activeModalWidget();
    auto *dialog = qobject_cast<QDialog *>(window);
    if (!dialog || qobject_cast<QProgressDialog *>(window))
        return;
    // A transfer comes and goes by itself; only a script that names it means it.
    if (qobject_cast<KelvaFileCopy *>(window) &&
        (m_entries.isEmpty() || m_entries.first().title != window->windowTitle()))
        return;
    const auto *box = qobject_cast<QMessageBox *>(window);
    const QString text = box ? box->text() : QString();
    if (box && box->textFormat() != Qt::PlainText && Qt::mightBeRichText(text))
        m_problems << "takes what it says as HTML: " + text;
    const bool expected = !m_entries.isEmpty() && m_entries.first().box == (box != nullptr) &&
                          m_entries.first().title == window->windowTitle() &&
                          text.contains(m_entries.first().textPart);
    if (!expected) {
        m_problems << "unexpected: " + window->windowTitle() + ": " + text;
        dialog->reject();
        return;
    }
    answer(window, m_entries.takeFirst());
}

void DialogScript::answer(QWidget *window, const Entry &entry)
{
    auto *dialog = qobject_cast<QDialog *>(window);
    if (entry.act)
        entry.act(window);
    if (auto *box = qobject_cast<QMessageBox *>(window)) {
        QAbstractButton *button = box->button(entry.button);
        if (!button) {
            m_problems << "no such button: " + entry.title;
            box->reject();
            return;
        }
        button->click();
        return;
    }
    entry.accept ? dialog->accept() : dialog->reject();
}
