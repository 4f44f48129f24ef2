#pragma once
// The jog panel: a negative and a positive button per axis of the connected
// robot. Holding a button jogs the axis through start_jogging(), whose timer
// repeats the jog step every 200 ms; releasing it, the panel losing focus,
// hiding or closing it always stop the axis with stop_jogging(). Beside the
// buttons: jog speed, coordinate system, the live position of each axis,
// servo state and operation mode.

#include <QDialog>
#include <QVector>

class QComboBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QSpinBox;
class QTimer;

class JogPanel : public QDialog
{
    Q_OBJECT
public:
    explicit JogPanel(QWidget *parent = nullptr);
    ~JogPanel() override;

    int activeAxis() const { return m_activeAxis; }

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void press(int axis, bool positive);
    void release(int axis);
    void stopActiveAxis();
    void buildAxes(int count);
    void refresh();
    void retranslate();

    struct AxisRow
    {
        QLabel *name;
        QPushButton *minus;
        QLabel *position;
        QPushButton *plus;
    };
    QVector<AxisRow> m_axes;
    QGridLayout *m_axisGrid = nullptr;
    QLabel *m_servo = nullptr;
    QLabel *m_mode = nullptr;
    QLabel *m_speedLabel = nullptr;
    QSpinBox *m_speed = nullptr;
    QLabel *m_coordLabel = nullptr;
    QComboBox *m_coord = nullptr;
    QLabel *m_message = nullptr;
    QTimer *m_refresh = nullptr;
    int m_activeAxis = 0; // the axis being jogged, 0 when none
};
