// Web addresses leave the program here.
#pragma once

#include <QString>

namespace reference {

/// Hands an address to whatever the desktop opens addresses with. A failure of that is not reported.
class AddressOpener {
public:
    virtual ~AddressOpener() = default;
    virtual void open(const QString& address) = 0;
};

} // namespace reference
