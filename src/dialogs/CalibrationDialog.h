#pragma once
// User-frame calibration by four points: choose the user frame
// (set_user_coord_number), mark each taught point (four_point_mark), read
// which points are marked (ask_four_point) and compute the frame
// (four_point_calculation). The results and the controller's reply about the
// chosen frame are shown with their texts.

#include <QDialog>
#include <QVector>

class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSpinBox;

class CalibrationDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CalibrationDialog(QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void chooseFrame();
    void mark(int point, int status);
    void readPoints();
    void calculate();
    void showFrame(int userNum, QVector<double> frame);
    bool linked();
    void retranslate();

    struct PointRow
    {
        QLabel *name;
        QLabel *state;
        QPushButton *mark;
        QPushButton *clear;
    };
    QVector<PointRow> m_points;
    QLabel *m_frameLabel = nullptr;
    QSpinBox *m_frame = nullptr;
    QPushButton *m_choose = nullptr;
    QLabel *m_frameValues = nullptr;
    QLabel *m_paramLabel = nullptr;
    QDoubleSpinBox *m_first = nullptr;
    QDoubleSpinBox *m_second = nullptr;
    QPushButton *m_calculate = nullptr;
    QLabel *m_result = nullptr;
    double m_status[4] = {};
    bool m_haveResult = false;
    double m_outcome[5] = {};
};
