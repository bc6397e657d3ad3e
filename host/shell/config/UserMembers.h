#pragma once

#include <QString>

class QJsonObject;

namespace shell {

class ObjectReader;
struct HostUser;

/** Takes the user's members that the object names; the others keep their values. */
void readUserMembers(ObjectReader& reader, HostUser& user);

/** As above from an object; all or nothing. Empty, or the error that names the member. */
QString mergeUser(const QJsonObject& members, HostUser& user);

} // namespace shell
