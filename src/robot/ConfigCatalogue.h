#pragma once
// Descriptions of the controller's configuration files, as shown when they
// are listed, exported or imported.
//
// Two catalogues: one for a controller with several robots (each robot has
// files of its own, 47 entries) and one for a single robot (26 entries: the
// files that are not per robot, and the robot-1 file of each per-robot
// family, described without the "机器人1" prefix). Both are filled once, in
// a fixed order, with the descriptions translated in the Robot context at
// that moment.

#include <QHash>
#include <QPair>
#include <QString>
#include <QVector>

namespace qrx {

class ConfigCatalogue
{
public:
    using Entry = QPair<QString, QString>; // file name, description

    ConfigCatalogue();

    // The description of a file for a controller with robotCount robots:
    // below 2 the single-robot catalogue, otherwise the multi-robot one.
    // Exact, case-sensitive name; an unknown name gives an empty string.
    QString describe(const QString &fileName, int robotCount) const;

    // The entries in the order of filling.
    const QVector<Entry> &multiRobot() const { return m_multi; }
    const QVector<Entry> &singleRobot() const { return m_single; }

private:
    QVector<Entry> m_multi;
    QVector<Entry> m_single;
    QHash<QString, QString> m_multiIndex;
    QHash<QString, QString> m_singleIndex;
};

} // namespace qrx
