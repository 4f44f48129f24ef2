#include "dialogs/AboutDialog.h"

#include "dialogs/DialogKit.h"
#include "robot/Robot.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace qrx::dialogs;

AboutDialog::AboutDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AboutDialog"));
    auto *layout = new QVBoxLayout(this);
    m_title = new QLabel(this);
    m_title->setStyleSheet(QStringLiteral("font-size: 16pt; font-weight: bold;"));
    m_description = new QLabel(this);
    m_description->setWordWrap(true);
    m_link = new QLabel(this);
    m_link->setObjectName(QStringLiteral("linkState"));
    m_jog = new QPushButton(this);
    m_jog->setObjectName(QStringLiteral("openJogPanel"));
    m_calibration = new QPushButton(this);
    m_calibration->setObjectName(QStringLiteral("openCalibration"));
    styleMenuButton(m_jog);
    styleMenuButton(m_calibration);
    layout->addWidget(m_title);
    layout->addWidget(m_description);
    layout->addWidget(m_link);
    layout->addSpacing(12);
    layout->addWidget(m_jog);
    layout->addWidget(m_calibration);
    connect(m_jog, &QPushButton::clicked, this, &AboutDialog::jogPanelWanted);
    connect(m_calibration, &QPushButton::clicked, this, &AboutDialog::calibrationWanted);
    retranslate();
}

void AboutDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void AboutDialog::retranslate()
{
    setWindowTitle(tr("关于 qrx_host"));
    m_title->setText(QStringLiteral("qrx_host %1").arg(QLatin1String(QRX_VERSION_TEXT)));
    m_description->setText(tr("机器人控制器主机库：连接控制器，点动，运动，IO，作业与标定。"));
    Robot *robot = connectedRobot();
    m_link->setText(robot ? tr("已连接控制器") : tr("未连接控制器"));
    m_jog->setText(tr("点动面板"));
    m_calibration->setText(tr("用户坐标标定"));
}
