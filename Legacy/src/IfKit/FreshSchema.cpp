#include <Legacy/IfKit/Families.h>
#include <Legacy/IfKit/FreshSchema.h>

#include <type_traits>

namespace Legacy::IfKit {

using namespace If;

boost::intrusive_ptr<InfoBase> FreshSchema(IfType_t type, NumericType_t numericType, unsigned int id,
                                           std::string const& name)
{
    return VisitFamily(type, numericType, [&]<typename Info, typename Item>(Family<Info, Item>) {
        boost::intrusive_ptr<InfoBase> info;
        if constexpr (std::is_same_v<Info, EnumInfo>)
            info.reset(new Info(id, name, Permission_t{}, false));
        else if constexpr (!std::is_void_v<Info>)
            info.reset(new Info(id, name, Permission_t{}));
        return info;
    });
}

} // namespace Legacy::IfKit
