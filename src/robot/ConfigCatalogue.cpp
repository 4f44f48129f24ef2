#include "robot/ConfigCatalogue.h"

#include <QCoreApplication>

namespace qrx {
namespace {

// A file of the controller. single: its description on a single-robot
// controller; nullptr when the file belongs to robots 2 to 4 only, the same
// pointer as multi when both texts agree.
struct CatalogueRow
{
    const char *file;
    const char *multi;
    const char *single;
};

#define SAME(text) QT_TRANSLATE_NOOP("Robot", text), QT_TRANSLATE_NOOP("Robot", text)
#define TR(text) QT_TRANSLATE_NOOP("Robot", text)

// In the order of filling. Per-robot files keep the controller's three
// naming schemes: "_R1".."_R4", "R1".."R4" and "_A".."_D".
const CatalogueRow kRows[] = {
    {"controller.json", SAME("控制器参数配置")},
    {"global.json", SAME("全局参数配置")},
    {"arctrack.json", SAME("电弧跟踪参数配置")},
    {"conveytrack.json", SAME("传送带跟踪参数配置")},
    {"externProgram.json", SAME("外部程序配置")},
    {"lasercut.json", SAME("激光切割参数配置")},
    {"lasertrack.json", SAME("激光跟踪参数配置")},
    {"polish.json", SAME("打磨参数配置")},
    {"positionExt_R1.json", TR("机器人1全局外部轴点位参数配置"), TR("全局外部轴点位参数配置")},
    {"positionExt_R2.json", TR("机器人2全局外部轴点位参数配置"), nullptr},
    {"positionExt_R3.json", TR("机器人3全局外部轴点位参数配置"), nullptr},
    {"positionExt_R4.json", TR("机器人4全局外部轴点位参数配置"), nullptr},
    {"position_R1.json", TR("机器人1全局点位参数配置"), TR("全局点位参数配置")},
    {"position_R2.json", TR("机器人2全局点位参数配置"), nullptr},
    {"position_R3.json", TR("机器人3全局点位参数配置"), nullptr},
    {"position_R4.json", TR("机器人4全局点位参数配置"), nullptr},
    {"R1palletparameter.json", TR("机器人1码垛参数配置"), TR("码垛参数配置")},
    {"R2palletparameter.json", TR("机器人2码垛参数配置"), nullptr},
    {"R3palletparameter.json", TR("机器人3码垛参数配置"), nullptr},
    {"R4palletparameter.json", TR("机器人4码垛参数配置"), nullptr},
    {"R1spray.json", TR("机器人1喷涂参数配置"), TR("喷涂参数配置")},
    {"R2spray.json", TR("机器人2喷涂参数配置"), nullptr},
    {"R3spray.json", TR("机器人3喷涂参数配置"), nullptr},
    {"R4spray.json", TR("机器人4喷涂参数配置"), nullptr},
    {"remoteDataUpload.json", SAME("数据上传参数配置")},
    {"Robot_A.json", TR("机器人1参数配置"), TR("参数配置")},
    {"Robot_B.json", TR("机器人2参数配置"), nullptr},
    {"Robot_C.json", TR("机器人3参数配置"), nullptr},
    {"Robot_D.json", TR("机器人4参数配置"), nullptr},
    {"toolFrame_A.json", TR("机器人1工具手参数配置"), TR("工具手参数配置")},
    {"toolFrame_B.json", TR("机器人2工具手参数配置"), nullptr},
    {"toolFrame_C.json", TR("机器人3工具手参数配置"), nullptr},
    {"toolFrame_D.json", TR("机器人4工具手参数配置"), nullptr},
    {"touchsearch.json", SAME("触碰寻位参数配置")},
    {"userFrame_A.json", TR("机器人1用户坐标参数配置"), TR("用户坐标参数配置")},
    {"userFrame_B.json", TR("机器人2用户坐标参数配置"), nullptr},
    {"userFrame_C.json", TR("机器人3用户坐标参数配置"), nullptr},
    {"userFrame_D.json", TR("机器人4用户坐标参数配置"), nullptr},
    {"variant.json", SAME("全局数值变量配置")},
    {"vision.json", SAME("视觉参数配置")},
    {"weavparameter.json", SAME("摆焊参数配置")},
    {"weldcraft.json", SAME("焊接工艺参数配置")},
    {"modbusAddr.json", SAME("MODBUS参数配置")},
    {"userDefinedProfile.json", SAME("用户自定义配置")},
    {"punch.json", SAME("冲压工艺配置")},
    {"msg_comm.json", SAME("TCP通讯配置")},
    {"slaveTypeLib.json", SAME("伺服自定义添加配置")},
};

#undef SAME
#undef TR

QString translated(const char *text)
{
    return QCoreApplication::translate("Robot", text);
}

} // namespace

ConfigCatalogue::ConfigCatalogue()
{
    for (const CatalogueRow &row : kRows) {
        const QString file = QString::fromLatin1(row.file);
        const QString multi = translated(row.multi);
        m_multi.append({file, multi});
        m_multiIndex.insert(file, multi);
        if (row.single) {
            const QString single = translated(row.single);
            m_single.append({file, single});
            m_singleIndex.insert(file, single);
        }
    }
}

QString ConfigCatalogue::describe(const QString &fileName, int robotCount) const
{
    const QHash<QString, QString> &index = robotCount < 2 ? m_singleIndex : m_multiIndex;
    return index.value(fileName);
}

} // namespace qrx
