#include "folders/columneditors.h"

#include "contract/folderoid.h"
#include "contract/recordformat.h"
#include "documents/documentcolumns.h"
#include "documents/kelvacalendardelegate.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvainfoview.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvasimplecombodelegate.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvaviewdelegate.h"
#include "folders/workbenchdata.h"
#include "widgets/searchtexts.h"

#include <QCoreApplication>
#include <QDebug>

namespace {

constexpr int longestText = 254;

bool isAttribute(int column)
{
    return column >= documentcolumn::firstAttribute;
}

} // namespace

ColumnEditors::ColumnEditors(KelvaInfoView *table) : m_table(table) {}

ColumnEditors::~ColumnEditors()
{
    const QList<int> columns = m_delegates.keys();
    for (const int column : columns)
        drop(column);
    if (m_folders)
        m_folders->deleteLater();
}

void ColumnEditors::rebuild(const WorkbenchData &workbench, const QStringList &completions)
{
    m_detached = false;
    makeAttributes(workbench);
    makeFixed(workbench, completions);
    makeFolders(workbench);
}

void ColumnEditors::release()
{
    const QList<int> columns = m_delegates.keys();
    for (const int column : columns)
        if (!isAttribute(column) || !qobject_cast<KelvaLineDelegate *>(m_delegates.value(column)))
            drop(column);
}

KelvaDelegate *ColumnEditors::forColumn(int column) const
{
    return m_delegates.value(column);
}

CellFace ColumnEditors::display(int column, const QString &key) const
{
    const KelvaComboDelegate *choices = m_choices.value(column);
    // A main folder that is inactive is not offered, but it has its name still.
    const bool offered = choices && (column != documentcolumn::mainFolder || choices->knows(key));
    if (offered)
        return {choices->getData(key), choices->getIcon(key)};
    const bool isFolder = column == documentcolumn::folder || column == documentcolumn::mainFolder;
    if (!isFolder || !m_folders || key == QLatin1String(folderoid::all))
        return {key, QIcon()};
    if (const KelvaDocItem *folder = m_folders->findItem(key))
        return {folder->getName(), folder->icon()};
    return {searchtext::notAssigned(), QIcon(":/icons/folder.png")};
}

void ColumnEditors::setAttributesDetached(bool detached)
{
    if (m_detached == detached)
        return;
    m_detached = detached;
    for (auto delegate = m_delegates.cbegin(); delegate != m_delegates.cend(); ++delegate)
        attach(delegate.key(), delegate.value());
}

void ColumnEditors::makeFixed(const WorkbenchData &workbench, const QStringList &completions)
{
    const auto choices = [this](int column, const QStringList &rows, const QList<QByteArray> &pictures,
                                const QIcon &fallback) {
        auto *delegate = new KelvaComboDelegate(rows, pictures, m_table, false, fallback, true, true);
        install(column, delegate);
        m_choices.insert(column, delegate);
    };
    choices(documentcolumn::mainFolder, workbench.mainFolders, workbench.mainFolderPictures,
            QIcon(":/icons/folder.png"));
    choices(documentcolumn::status, workbench.status, workbench.statusPictures, QIcon());
    choices(documentcolumn::type, workbench.types, workbench.typePictures, QIcon());
    install(documentcolumn::date, new KelvaCalendarDelegate(m_table, false, false, false));
    install(documentcolumn::resubmission, new KelvaCalendarDelegate(m_table, true, false, false));
    auto *changeTime = new KelvaLineDelegate({}, m_table, longestText, false);
    changeTime->setShowsLocalTime(true);
    install(documentcolumn::changeTime, changeTime);
    install(documentcolumn::description, new KelvaLineDelegate(completions, m_table, longestText, false));
}

void ColumnEditors::makeFolders(const WorkbenchData &workbench)
{
    KelvaDocTree *old = m_folders;
    m_folders = new KelvaDocTree(QCoreApplication::translate("KelvaClientMain", "Folders"), true,
                                 searchtext::notAssigned(), folderoid::notAssigned, nullptr);
    m_folders->loadFromStringList(workbench.folders, workbench.folderPictures, false);
    install(documentcolumn::folder, new KelvaViewDelegate(m_folders, m_table));
    if (old)
        old->deleteLater();
}

void ColumnEditors::makeAttributes(const WorkbenchData &workbench)
{
    // First everything old goes: a column may have become one of another kind.
    const QList<int> columns = m_delegates.keys();
    for (const int column : columns)
        if (isAttribute(column) && !workbench.lineColumns.contains(column))
            drop(column);
    const auto traced = [](int column, const QString &values) {
        qDebug() << "DELEGATEVALS: " << column << values;
        return column;
    };
    for (auto line = workbench.lineColumns.cbegin(); line != workbench.lineColumns.cend(); ++line)
        makeLine(line.key(), line.value().split(recordformat::listSeparator, Qt::KeepEmptyParts));
    for (auto combo = workbench.comboColumns.cbegin(); combo != workbench.comboColumns.cend(); ++combo) {
        QStringList values = combo.value().split(recordformat::listSeparator, Qt::SkipEmptyParts);
        values.prepend(QString());
        install(traced(combo.key(), combo.value()),
                new KelvaSimpleComboDelegate(values, m_table, true, true, false, true));
    }
    for (auto check = workbench.checkColumns.cbegin(); check != workbench.checkColumns.cend(); ++check)
        install(traced(check.key(), check.value()), new KelvaCheckBoxDelegate(false, m_table));
    for (auto date = workbench.dateColumns.cbegin(); date != workbench.dateColumns.cend(); ++date)
        install(traced(date.key(), date.value()), new KelvaCalendarDelegate(m_table, false, false, true));
}

void ColumnEditors::makeLine(int column, QStringList values)
{
    // A mark, and no value to offer.
    const bool numeric = values.removeAll(KelvaLineDelegate::numericMark) > 0;
    auto *present = qobject_cast<KelvaLineDelegate *>(m_delegates.value(column));
    if (present && present->getIsNumeric() == numeric) {
        present->setCompletor(values);
        attach(column, present);
        return;
    }
    qDebug() << "DELEGATEVALS: " << column << values;
    install(column, new KelvaLineDelegate(values, m_table, longestText, numeric));
}

void ColumnEditors::install(int column, KelvaDelegate *delegate)
{
    drop(column);
    m_delegates.insert(column, delegate);
    attach(column, delegate);
}

void ColumnEditors::drop(int column)
{
    m_choices.remove(column);
    KelvaDelegate *delegate = m_delegates.take(column);
    if (!delegate)
        return;
    // Before it dies: the table would go on painting with it.
    attach(column, nullptr);
    delegate->deleteLater();
}

void ColumnEditors::attach(int column, KelvaDelegate *delegate)
{
    if (m_table)
        m_table->setItemDelegateForColumn(column, m_detached && isAttribute(column) ? nullptr : delegate);
}
