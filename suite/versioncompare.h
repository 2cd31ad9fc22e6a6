#pragma once

#include <QString>

// Compares an installed version with the latest published one, part by part at every ".".
// Negative: the latest is higher (an update is offered); 0: equal; positive: the installed copy
// is newer. A part that is not a number counts as 0, and when every compared part is equal the
// version with more parts ranks higher, so "1.2" is older than "1.2.0". The difference is
// bounded to the range of int.
int compareVersions(const QString &installed, const QString &latest);

// The published version in an update server's answer: the body without surrounding white space
// when it is a dotted version (up to 8 parts of up to 9 digits), else empty. An error page or
// any other long answer is no version, and counts as no answer.
QString versionFromAnswer(const QByteArray &body);
