#pragma once

#include <Legacy/If/Numeric.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

/// A library of an application: it makes schemas and values that the program then meets.
namespace Maker {

#define MAKER_API __attribute__((visibility("default")))

/// A value class of the application's own.
class MAKER_API Percent : public Legacy::If::NumericItem<Legacy::If::U8Traits>
{
public:
    explicit Percent(unsigned int id) : NumericItem(id) {}
    Percent* DeepCopy(unsigned int id) const override;
    std::ostream& operator<<(std::ostream& os) const override;
};

MAKER_API boost::intrusive_ptr<Legacy::If::ItemBase> MakePercent(unsigned char value);
MAKER_API boost::intrusive_ptr<Legacy::If::InfoBase> MakePercentInfo();

/// Validates on this side of the border: whether the value passes.
MAKER_API bool Passes(boost::intrusive_ptr<Legacy::If::ItemBase> const& item,
                      boost::intrusive_ptr<Legacy::If::InfoBase const> const& info);

} // namespace Maker
