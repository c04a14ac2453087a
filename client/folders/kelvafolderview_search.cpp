#include "folders/kelvafolderview.h"

#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvasearchdlg.h"
#include "widgets/waitcursor.h"

#include <QGuiApplication>
#include <QLayout>
#include <QTimer>

namespace {

constexpr int focusDelayMs = 100;

} // namespace

void KelvaFolderView::makeSearchBar()
{
    m_searchBar = new KelvaSearchDlg(this, parentWidget());
    m_searchBar->hide();
    placeSearchBar();
    connect(m_searchBar, SIGNAL(newSearch(QString)), this, SLOT(doPartialSearch(QString)));
    connect(m_searchBar, SIGNAL(updateFolder()), this, SLOT(doSearchSelection()));
    connect(m_searchBar, SIGNAL(nextSearch()), this, SLOT(updateSearch()));
    connect(m_searchBar, SIGNAL(resetFolder()), this, SLOT(resetFolder()));
}

void KelvaFolderView::placeSearchBar()
{
    QLayout *layout = parentWidget() ? parentWidget()->layout() : nullptr;
    if (!layout)
        return;
    layout->removeWidget(m_searchBar);
    layout->addWidget(m_searchBar);
}

void KelvaFolderView::showSearchDlg(int key)
{
    if (!m_searchBar->isVisible()) {
        // A form puts the view into the layout after it was made: only now is the bar's place below it.
        placeSearchBar();
        m_indexBeforeSearch = QTreeView::currentIndex();
        m_searchBar->show();
    }
    if (key != 0 && QChar(key).isLetterOrNumber()) {
        m_searchBar->setSearchText(QString()); // the same letter again is a new search
        m_searchBar->setSearchText(QChar(key));
    } else if (key == 0)
        m_searchBar->selectText();
    m_searchBar->setInputFocus();
}

void KelvaFolderView::showSearchDlg(const QString &text)
{
    m_searchBarOpen = true;
    showSearchDlg(Qt::Key_unknown);
    m_searchBar->setSearchText(QString());
    m_searchBar->setSearchText(text);
    QTimer::singleShot(focusDelayMs, m_searchBar, [bar = m_searchBar] { bar->setInputFocus(); });
}

void KelvaFolderView::hideSearchDlg()
{
    m_searchBarOpen = false;
    m_searchBar->hide();
}

void KelvaFolderView::doPartialSearch(const QString &text)
{
    m_searchText = text;
    searchAgain(true);
}

void KelvaFolderView::updateSearch()
{
    searchAgain(false);
}

const KelvaDocItem *KelvaFolderView::nextHit()
{
    // A locked folder cannot become the current one; Return would choose the one before it.
    const KelvaDocItem *found = nullptr;
    do
        found = m_tree->searchItem(m_searchText, m_searchPosition, false);
    while (found && !found->getFlags().testFlag(Qt::ItemIsSelectable));
    return found;
}

void KelvaFolderView::searchAgain(bool fromStart)
{
    if (!m_tree)
        return;
    const WaitCursor cursor;
    listenToCurrent(false);
    if (!m_searchBar->isVisible())
        showSearchDlg();
    else
        m_searchBar->setInputFocus();
    m_searchPosition = fromStart ? 0 : m_tree->getCurrentSearchIndex(currentItem()) + 1;
    const KelvaDocItem *found = nextHit();
    if (!found) {
        // Once round: what is above the current folder counts as well.
        m_searchPosition = 0;
        found = nextHit();
    }
    if (found) {
        clearSelection();
        setCurrentIndex(m_tree->indexFromItem(found));
        m_searchBar->setFoundText(found->getName() + ' ' + found->getExtKey() + ' ' + found->getBuzzWords(),
                                  m_searchText);
        setExpanded(QTreeView::currentIndex(), true);
    } else {
        m_searchBar->doNewSearch();
    }
    listenToCurrent(true);
}

void KelvaFolderView::resetFolder()
{
    m_searchBar->hide();
    m_searchBarOpen = false;
    if (m_indexBeforeSearch.isValid())
        QTreeView::setCurrentIndex(m_indexBeforeSearch);
    setFocus();
}
