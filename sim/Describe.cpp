#include "sim/Describe.h"

#include "sim/CellModel.h"
#include "sim/Ranges.h"
#include "sim/commands/QueueInstructions.h"
#include "sim/commands/Refusal.h"

#include <QStringList>

namespace qrxsim {

namespace {

QString range(const ValueRange &r)
{
    return QStringLiteral("%1..%2").arg(r.min).arg(r.max);
}

QString limits(const ValueRange *axes, int count)
{
    QStringList list;
    for (int i = 0; i < count; ++i)
        list << QStringLiteral("%1: %2").arg(i + 1).arg(range(axes[i]));
    return list.join(QStringLiteral(", "));
}

// The text as lines of at most 78 characters; lines after the first
// indented by `indent` blanks.
QString wrapped(const QString &text, int indent)
{
    QStringList lines{QString()};
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (!lines.last().trimmed().isEmpty() && lines.last().size() + 1 + word.size() > 78)
            lines << QString(indent, QLatin1Char(' '));
        if (!lines.last().trimmed().isEmpty())
            lines.last() += QLatin1Char(' ');
        lines.last() += word;
    }
    return lines.join(QLatin1Char('\n'));
}

QString speeds(const double *values, int count)
{
    QStringList list;
    for (int i = 0; i < count; ++i)
        list << QString::number(values[i]);
    return list.join(QLatin1Char('/'));
}

} // namespace

QString controllerDescription()
{
    QStringList jobs;
    for (const auto &[name, lines] : SimJobRunner().jobs)
        jobs << QStringLiteral("%1 (%2 lines)").arg(QString::fromStdString(name)).arg(lines);
    QStringList instructions;
    for (const std::string &name : executedInstructions())
        instructions << QString::fromStdString(name);
    QStringList refusals;
    for (const RefusalReason &reason : kRefusals)
        refusals << QStringLiteral("  ") + wrapped(QStringLiteral("0x%1 %2")
                                                       .arg(int(reason.code), 4, 16, QLatin1Char('0'))
                                                       .arg(QLatin1String(reason.what)),
                                                   9);

    QStringList text;
    text << QStringLiteral("What it holds:")
         << QStringLiteral("  ") + wrapped(QStringLiteral("jobs: %1; a job runs one line per %2 ms.")
                                                  .arg(jobs.join(QStringLiteral(", ")))
                                                  .arg(SimJobRunner::lineMs),
                                              4)
         << QStringLiteral("  ") + wrapped(QStringLiteral("robot axis limits (degrees) %1;").arg(limits(ranges::kRobotAxes, 7)), 4)
         << QStringLiteral("  ") + wrapped(QStringLiteral("synchronous axis limits %1.").arg(limits(ranges::kSyncAxes, 5)), 4)
         << QStringLiteral("  ") + wrapped(QStringLiteral("Moves travel at \"vel\" percent of full speed (%1 "
                                                         "units/s for axes 1..7, %2 for the synchronous axes), "
                                                         "all axes arriving together;")
                                                  .arg(speeds(SimMotion::robotFullSpeed, 7),
                                                       speeds(SimMotion::syncFullSpeed, 5)),
                                              4)
         << QStringLiteral("  jogging at the jog speed percent of %1 units/s, stopping at the limits.")
                .arg(SimMotion::maxJogSpeed)
         << QStringLiteral("  operating mode %1, coordinate system %2, jog speed %3, deadman %4;")
                .arg(range(ranges::kMode), range(ranges::kCoordinate), range(ranges::kJogSpeed), range(ranges::kDeadman))
         << QStringLiteral("  move speed, acceleration and deceleration %1 %.").arg(range(ranges::kMoveSpeed))
         << QStringLiteral("  IO: %1 digital outputs (%2), %1 analog outputs (%3 V), ports %4;")
                .arg(SimIo::ports).arg(range(ranges::kDigital), range(ranges::kAnalog), range(ranges::kPort))
         << QStringLiteral("  each output is wired back to the input of the same number.")
         << QStringLiteral("  Global variables: GB### (0 or 1), GI### (whole numbers), GD### (reals);")
         << QStringLiteral("  global positions by name (14 values); unknown ones read as zero.")
         << QStringLiteral("  ") + wrapped(QStringLiteral("Continuous-motion queue instructions executed: %1.")
                                                  .arg(instructions.join(QStringLiteral(", "))),
                                              4)
         << QStringLiteral("  Queued speeds: percent, or mm/s and cm/s with 1000 mm/s as full speed.")
         << QString()
         << QStringLiteral("What it refuses, with the error message 0x2B03 {\"data\",\"type\"} (the host's")
         << QStringLiteral("error callback hears it; the refused command changes nothing), by type:")
         << refusals;
    return text.join(QLatin1Char('\n'));
}

} // namespace qrxsim
