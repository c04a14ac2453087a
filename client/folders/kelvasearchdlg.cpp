#include "folders/kelvasearchdlg.h"

#include "folders/foldersearchtext.h"
#include "ui_kelvasearchdlg.h"

#include <QCompleter>
#include <QCoreApplication>
#include <QDebug>
#include <QKeyEvent>

KelvaSearchDlg::KelvaSearchDlg(QWidget *view, QWidget *parent)
    : QWidget(parent),
      m_ui(std::make_unique<Ui::KelvaSearchDlg>()),
      m_view(view)
{
    m_ui->setupUi(this);
    setFixedHeight(80);
    connect(m_ui->m_searchText, SIGNAL(textChanged(QString)), this, SLOT(emitNewSearch(QString)));
    connect(m_ui->m_bCancel, SIGNAL(clicked()), this, SLOT(cancel()));
}

KelvaSearchDlg::~KelvaSearchDlg() = default;

QString KelvaSearchDlg::searchText() const
{
    return m_ui->m_searchText->text();
}

void KelvaSearchDlg::setSearchText(const QString &text)
{
    m_ui->m_searchText->setText(text);
}

void KelvaSearchDlg::selectText()
{
    m_ui->m_searchText->selectAll();
}

void KelvaSearchDlg::setInputFocus()
{
    m_ui->m_searchText->setFocus();
}

void KelvaSearchDlg::setCompleter(QCompleter *completer)
{
    m_ui->m_searchText->setCompleter(completer);
    if (!completer)
        return;
    disconnect(completer, SIGNAL(activated(QString)), this, SLOT(logCompletion(QString)));
    connect(completer, SIGNAL(activated(QString)), this, SLOT(logCompletion(QString)));
}

void KelvaSearchDlg::logCompletion(const QString &text)
{
    qDebug() << "COMPLETED" << text;
}

void KelvaSearchDlg::setFoundText(const QString &text, const QString &search)
{
    int matches = 0;
    m_ui->m_foundText->setHtml(foundFolderText(text, search, &matches));
    if (matches > 0)
        m_ui->m_foundText->scrollToAnchor(QStringLiteral("myanchor%1").arg(matches - 1));
}

void KelvaSearchDlg::doNewSearch()
{
    m_ui->m_foundText->clear();
    m_ui->m_searchText->setStyleSheet("* { background-color: red; }");
}

void KelvaSearchDlg::emitNewSearch(const QString &text)
{
    m_ui->m_searchText->setStyleSheet("* { background-color: white; }");
    emit newSearch(text);
}

void KelvaSearchDlg::cancel()
{
    hide();
    emit resetFolder();
}

void KelvaSearchDlg::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        cancel();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_ui->m_bCancel->hasFocus()) {
            cancel(); // who stands on the button means it
            break;
        }
        [[fallthrough]];
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        hide();
        emit updateFolder();
        break;
    case Qt::Key_F3:
        emit nextSearch();
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        QCoreApplication::sendEvent(m_view, event);
        setInputFocus();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}
