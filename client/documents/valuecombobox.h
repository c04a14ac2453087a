#pragma once

#include <QComboBox>
#include <QWheelEvent>

/// Editor of a cell with values to choose from. Typing looks for a value by its first letters.
class ValueComboBox final : public QComboBox
{
    Q_OBJECT

public:
    /// With openList the list opens by itself, once, as soon as the box is shown or gets the focus.
    ValueComboBox(QWidget *parent, bool openList);

    /// Selects the cell's value without a signal; -1 when it is not among the values, then the box shows
    /// text.
    void startWith(int index, const QString &text);
    /// Whether another value than the cell's is selected.
    bool isChosen() const { return currentIndex() >= 0 && currentIndex() != m_start; }

signals:
    /// Escape was pressed in the list that had opened by itself: the list was all there was to see of the
    /// edit.
    void givenUp();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    /// The wheel scrolls the table; it would change the value in passing.
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }

private slots:
    void doShowPopup();

private:
    void openListOnce();

    bool m_openList;
    const bool m_listIsTheEditor;
    int m_start = -1;
    QString m_startText;
};
