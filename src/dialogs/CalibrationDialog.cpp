#include "dialogs/CalibrationDialog.h"

#include "api/qrx_host.h"
#include "dialogs/DialogKit.h"
#include "robot/Robot.h"

#include <QDoubleSpinBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace qrx::dialogs;

namespace {

constexpr int kPoints = 4;
constexpr int kMarked = 1;
constexpr int kCleared = 0;
constexpr int kMaxUserFrame = 9;

} // namespace

CalibrationDialog::CalibrationDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("CalibrationDialog"));
    auto *layout = new QVBoxLayout(this);

    auto *frameRow = new QHBoxLayout;
    m_frameLabel = new QLabel(this);
    m_frame = new QSpinBox(this);
    m_frame->setObjectName(QStringLiteral("userFrame"));
    m_frame->setRange(1, kMaxUserFrame);
    m_choose = new QPushButton(this);
    m_choose->setObjectName(QStringLiteral("chooseFrame"));
    frameRow->addWidget(m_frameLabel);
    frameRow->addWidget(m_frame);
    frameRow->addWidget(m_choose);
    layout->addLayout(frameRow);
    m_frameValues = new QLabel(this);
    m_frameValues->setObjectName(QStringLiteral("frameValues"));
    layout->addWidget(m_frameValues);

    auto *grid = new QGridLayout;
    for (int point = 1; point <= kPoints; ++point) {
        PointRow row{new QLabel(this), new QLabel(this), new QPushButton(this), new QPushButton(this)};
        row.state->setObjectName(QStringLiteral("pointState%1").arg(point));
        row.mark->setObjectName(QStringLiteral("markPoint%1").arg(point));
        row.clear->setObjectName(QStringLiteral("clearPoint%1").arg(point));
        connect(row.mark, &QPushButton::clicked, this, [this, point] { mark(point, kMarked); });
        connect(row.clear, &QPushButton::clicked, this, [this, point] { mark(point, kCleared); });
        grid->addWidget(row.name, point - 1, 0);
        grid->addWidget(row.state, point - 1, 1);
        grid->addWidget(row.mark, point - 1, 2);
        grid->addWidget(row.clear, point - 1, 3);
        m_points.append(row);
    }
    layout->addLayout(grid);

    auto *params = new QHBoxLayout;
    m_paramLabel = new QLabel(this);
    m_first = new QDoubleSpinBox(this);
    m_second = new QDoubleSpinBox(this);
    m_first->setObjectName(QStringLiteral("firstParam"));
    m_second->setObjectName(QStringLiteral("secondParam"));
    for (QDoubleSpinBox *box : {m_first, m_second}) {
        box->setRange(-100000.0, 100000.0);
        box->setDecimals(3);
    }
    m_calculate = new QPushButton(this);
    m_calculate->setObjectName(QStringLiteral("calculate"));
    params->addWidget(m_paramLabel);
    params->addWidget(m_first);
    params->addWidget(m_second);
    params->addWidget(m_calculate);
    layout->addLayout(params);
    m_result = new QLabel(this);
    m_result->setObjectName(QStringLiteral("result"));
    m_result->setWordWrap(true);
    layout->addWidget(m_result);

    connect(m_choose, &QPushButton::clicked, this, &CalibrationDialog::chooseFrame);
    connect(m_calculate, &QPushButton::clicked, this, &CalibrationDialog::calculate);
    if (Robot *robot = connectedRobot()) {
        m_frame->setValue(qBound(1, int(robot->currentUserFrame), kMaxUserFrame));
        // The controller's answer to the frame inquiry (on the link thread;
        // queued into this dialog's thread).
        connect(robot, &Robot::robot_usercoords_reply, this,
                [this](int userNum, QString, QVector<double> frame, bool) { showFrame(userNum, frame); });
    }
    retranslate();
    readPoints();
}

bool CalibrationDialog::linked()
{
    if (connectedRobot())
        return true;
    m_result->setText(tr("未连接控制器"));
    return false;
}

void CalibrationDialog::chooseFrame()
{
    if (linked())
        set_user_coord_number(m_frame->value());
}

void CalibrationDialog::mark(int point, int status)
{
    if (!linked())
        return;
    four_point_mark(point, status);
    readPoints();
}

void CalibrationDialog::readPoints()
{
    if (!connectedRobot())
        return;
    double data[9] = {};
    ask_four_point(data); // status of points 1..4, result, length x3, dtheta
    std::copy(data, data + kPoints, m_status);
    retranslate();
}

void CalibrationDialog::calculate()
{
    if (!linked())
        return;
    four_point_calculation(m_first->value(), m_second->value(), m_outcome); // result, length x3, dtheta
    m_haveResult = true;
    retranslate();
}

void CalibrationDialog::showFrame(int userNum, QVector<double> frame)
{
    QStringList values;
    for (double v : frame)
        values << QString::number(v, 'f', 3);
    m_frameValues->setText(tr("用户坐标%1: %2").arg(userNum).arg(values.join(QStringLiteral("  "))));
}

void CalibrationDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void CalibrationDialog::retranslate()
{
    setWindowTitle(tr("用户坐标标定"));
    m_frameLabel->setText(tr("用户坐标号"));
    m_choose->setText(tr("选择"));
    m_paramLabel->setText(tr("计算参数"));
    m_calculate->setText(tr("计算"));
    for (int i = 0; i < m_points.size(); ++i) {
        m_points[i].name->setText(tr("第%1点").arg(i + 1));
        m_points[i].state->setText(m_status[i] != 0 ? tr("已标定") : tr("未标定"));
        m_points[i].mark->setText(tr("标定"));
        m_points[i].clear->setText(tr("清除"));
    }
    if (!connectedRobot()) {
        m_result->setText(tr("未连接控制器"));
    } else if (m_haveResult) {
        const QString outcome = m_outcome[0] != 0 ? tr("四点标定计算成功") : tr("四点标定计算失败");
        m_result->setText(tr("%1 长度: %2 %3 %4 角度偏差: %5")
                              .arg(outcome)
                              .arg(m_outcome[1], 0, 'f', 3)
                              .arg(m_outcome[2], 0, 'f', 3)
                              .arg(m_outcome[3], 0, 'f', 3)
                              .arg(m_outcome[4], 0, 'f', 3));
    } else {
        m_result->clear();
    }
}
