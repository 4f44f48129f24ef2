#pragma once
// Where local job files live and which controller names may be written.
//
// Job root: the folder that holds "robotJob/R1" ... "robotJob/R4". By default
// the application folder; the environment variable QRX_JOB_ROOT names another
// one. A controller's own root (the host's qrx_set_job_root) wins over both.

#include <QString>

namespace qrx::transfer {

// The default job root (environment or application folder).
QString jobRoot();
// "<job root>/robotJob/R<robot>" for robot 1..4.
QString jobFolder(const QString &root, int robot);

// A plain file name: not empty, not "." or "..", no separator, no drive.
bool isPlainName(const QString &name);
// A relative controller path ("job/R1/A.JBR"): plain names joined by "/".
bool isRelativePath(const QString &path);

// The MD5 of a file as lower-case hexadecimal text, read in pieces; empty
// when it cannot be read.
QString fileMd5(const QString &path);

} // namespace qrx::transfer
