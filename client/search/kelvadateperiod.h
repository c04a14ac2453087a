#pragma once

#include "search/dateinterval.h"

#include <QGroupBox>

#include <memory>

namespace Ui {
class kelvadateperiod;
}

/// The panel of a calendar that makes its date dynamic: so many days, months and years from today.
class kelvadateperiod final : public QGroupBox
{
    Q_OBJECT

public:
    explicit kelvadateperiod(QWidget *parent = nullptr);
    ~kelvadateperiod() override;

    /// In the form of DateInterval::text().
    QString getInterval() const;
    /// A text of another form changes nothing. Does not emit dateChanged().
    void setInterval(const QString &text);
    bool getIsDynamic() const;
    void setDynamic(bool dynamic);

public slots:
    /// Emits the date that the interval gives today.
    void checkDate();

signals:
    void dateChanged(QDate date);
    /// The date has become dynamic, or is so no more.
    void activated(bool active);
    /// Return was pressed: the user is done.
    void commit();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    void activeToggled(bool active);

private:
    DateInterval interval() const;

    const std::unique_ptr<Ui::kelvadateperiod> m_ui;
};
