#include "dialogs/JogPanel.h"

#include "api/qrx_host.h"
#include "dialogs/DialogKit.h"
#include "protocol/Codes.h"
#include "robot/Robot.h"

#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QAbstractItemView>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

using namespace qrx::dialogs;

namespace {

constexpr int kServoRunning = 3;
constexpr int kRefreshMs = 300;   // live state and position
using namespace qrx::protocol::code;

} // namespace

JogPanel::JogPanel(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("JogPanel"));
    auto *layout = new QVBoxLayout(this);

    auto *state = new QHBoxLayout;
    m_servo = new QLabel(this);
    m_servo->setObjectName(QStringLiteral("servoState"));
    m_mode = new QLabel(this);
    m_mode->setObjectName(QStringLiteral("modeState"));
    state->addWidget(m_servo);
    state->addWidget(m_mode);
    layout->addLayout(state);

    auto *settings = new QHBoxLayout;
    m_speedLabel = new QLabel(this);
    m_speed = new QSpinBox(this);
    m_speed->setObjectName(QStringLiteral("jogSpeed"));
    m_speed->setRange(1, 100);
    m_speed->setSuffix(QStringLiteral(" %"));
    m_coordLabel = new QLabel(this);
    m_coord = new QComboBox(this);
    m_coord->setObjectName(QStringLiteral("coordSystem"));
    settings->addWidget(m_speedLabel);
    settings->addWidget(m_speed);
    settings->addWidget(m_coordLabel);
    settings->addWidget(m_coord);
    layout->addLayout(settings);

    m_axisGrid = new QGridLayout;
    layout->addLayout(m_axisGrid);
    m_message = new QLabel(this);
    m_message->setObjectName(QStringLiteral("jogMessage"));
    m_message->setStyleSheet(QStringLiteral("color: #b00000;"));
    m_message->setWordWrap(true);
    layout->addWidget(m_message);

    retranslate();
    Robot *robot = currentRobot();
    buildAxes(robot ? int(robot->axisCount) : 6);
    if (Robot *linked = connectedRobot()) {
        // Ask for what the controller holds now; the replies refresh the cache.
        queryAboutCurrentRobot(linked, GetSpeed);
        queryAboutCurrentRobot(linked, GetCoordinationMode);
    }
    connect(m_speed, QOverload<int>::of(&QSpinBox::valueChanged), this, [](int speed) { set_jogging_speed(speed); });
    connect(m_coord, QOverload<int>::of(&QComboBox::activated), this, [this](int coord) {
        set_current_coord(coord);
        refresh();
    });

    m_refresh = new QTimer(this);
    m_refresh->setInterval(kRefreshMs);
    connect(m_refresh, &QTimer::timeout, this, &JogPanel::refresh);
    refresh();
}

JogPanel::~JogPanel()
{
    stopActiveAxis();
}

void JogPanel::buildAxes(int count)
{
    for (const AxisRow &row : qAsConst(m_axes)) {
        delete row.name;
        delete row.minus;
        delete row.position;
        delete row.plus;
    }
    m_axes.clear();
    for (int axis = 1; axis <= qBound(1, count, 7); ++axis) {
        AxisRow row{new QLabel(this), new QPushButton(QStringLiteral("−"), this), new QLabel(this),
                    new QPushButton(QStringLiteral("+"), this)};
        row.minus->setObjectName(QStringLiteral("jogMinus%1").arg(axis));
        row.plus->setObjectName(QStringLiteral("jogPlus%1").arg(axis));
        row.position->setObjectName(QStringLiteral("position%1").arg(axis));
        row.position->setMinimumWidth(90);
        row.position->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        for (QPushButton *button : {row.minus, row.plus}) {
            button->setAutoRepeat(false);
            button->setFocusPolicy(Qt::NoFocus);
            button->setMinimumSize(56, 36);
        }
        connect(row.minus, &QPushButton::pressed, this, [this, axis] { press(axis, false); });
        connect(row.plus, &QPushButton::pressed, this, [this, axis] { press(axis, true); });
        connect(row.minus, &QPushButton::released, this, [this, axis] { release(axis); });
        connect(row.plus, &QPushButton::released, this, [this, axis] { release(axis); });
        const int line = axis - 1;
        m_axisGrid->addWidget(row.name, line, 0);
        m_axisGrid->addWidget(row.minus, line, 1);
        m_axisGrid->addWidget(row.position, line, 2);
        m_axisGrid->addWidget(row.plus, line, 3);
        m_axes.append(row);
    }
}

void JogPanel::press(int axis, bool positive)
{
    stopActiveAxis();
    if (get_servo_state() != kServoRunning) {
        m_message->setText(tr("伺服不在运行状态,无法执行点动操作!"));
        return;
    }
    m_message->clear();
    m_activeAxis = axis;
    start_jogging(axis, positive);
}

void JogPanel::release(int axis)
{
    if (axis == m_activeAxis)
        stopActiveAxis();
}

void JogPanel::stopActiveAxis()
{
    if (m_activeAxis == 0)
        return;
    const int axis = m_activeAxis;
    m_activeAxis = 0;
    stop_jogging(axis);
}

void JogPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        stopActiveAxis();
    QDialog::changeEvent(event);
}

// The position is asked for only while the panel is on screen.
void JogPanel::showEvent(QShowEvent *event)
{
    m_refresh->start();
    QDialog::showEvent(event);
}

void JogPanel::hideEvent(QHideEvent *event)
{
    m_refresh->stop();
    stopActiveAxis();
    QDialog::hideEvent(event);
}

void JogPanel::closeEvent(QCloseEvent *event)
{
    stopActiveAxis();
    QDialog::closeEvent(event);
}

// The cached state as the controller last reported it, and a query for the
// position (the reply refreshes the cache for the next tick).
void JogPanel::refresh()
{
    Robot *robot = connectedRobot();
    if (!robot) {
        m_servo->setText(tr("未连接控制器"));
        m_mode->clear();
        return;
    }
    if (robot->axisCount != m_axes.size() && robot->axisCount >= 1 && robot->axisCount <= 7 && m_activeAxis == 0)
        buildAxes(robot->axisCount);
    m_servo->setText(tr("伺服: %1").arg(servoText(robot->servoStatus)));
    m_mode->setText(tr("模式: %1").arg(modeText(robot->operationMode)));
    const int coord = robot->coordinate;
    // The controller's values, unless the operator is changing them.
    if (!m_speed->hasFocus() && robot->speed >= 1 && robot->speed <= 100) {
        const QSignalBlocker quiet(m_speed);
        m_speed->setValue(robot->speed);
    }
    if (!m_coord->view()->isVisible() && coord < kCoordCount)
        m_coord->setCurrentIndex(coord);
    for (int i = 0; i < m_axes.size(); ++i) {
        m_axes[i].name->setText(axisLabel(i + 1, coord));
        m_axes[i].position->setText(i < 6 ? QString::number(robot->currentPosition[i], 'f', 3) : QStringLiteral("-"));
    }
    queryAboutCurrentRobot(robot, GetCurrentPosition, coord);
}

void JogPanel::retranslate()
{
    setWindowTitle(tr("点动面板"));
    m_speedLabel->setText(tr("点动速度"));
    m_coordLabel->setText(tr("坐标系"));
    const int current = m_coord->currentIndex();
    m_coord->clear();
    for (int coord = 0; coord < kCoordCount; ++coord)
        m_coord->addItem(coordText(coord));
    m_coord->setCurrentIndex(qMax(0, current));
    if (!m_message->text().isEmpty())
        m_message->setText(tr("伺服不在运行状态,无法执行点动操作!"));
    if (m_refresh)
        refresh();
}
