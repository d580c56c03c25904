#pragma once

#include "Platform/Types/Data.h"
#include "Platform/Types/Object.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace farview
{

/// What a notification carries. Between processes only texts travel.
using UserInfoValue = std::variant<std::string, std::vector<std::string>, std::shared_ptr<Object>,
                                   std::map<std::string, Data>>;
using UserInfo = std::map<std::string, UserInfoValue>;

/// One announcement. `object` is who announces, within a process; null between processes.
class Notification : public Object
{
public:
    Notification(std::string name, const Object* object, UserInfo userInfo)
        : mName(std::move(name)), mObject(object), mUserInfo(std::move(userInfo))
    {
    }

    const std::string& name() const { return mName; }
    const Object* object() const { return mObject; }
    const UserInfo& userInfo() const { return mUserInfo; }
    /// The text under that key; null when the key is missing or holds something else.
    const std::string* text(const std::string& key) const
    {
        const auto found = mUserInfo.find(key);
        return found == mUserInfo.end() ? nullptr : std::get_if<std::string>(&found->second);
    }

private:
    std::string mName;
    const Object* mObject;
    UserInfo mUserInfo;
};

} // namespace farview
