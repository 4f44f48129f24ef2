#pragma once
// The dialog showDialog() opens: what the library is, whether a controller
// is connected, and menu buttons that open the jog panel and the user-frame
// calibration dialog.

#include <QDialog>

class QLabel;
class QPushButton;

class AboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AboutDialog(QWidget *parent = nullptr);

signals:
    void jogPanelWanted();
    void calibrationWanted();

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    QLabel *m_title = nullptr;
    QLabel *m_description = nullptr;
    QLabel *m_link = nullptr;
    QPushButton *m_jog = nullptr;
    QPushButton *m_calibration = nullptr;
};
