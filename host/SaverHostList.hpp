#pragma once

#include "host/HostTexts.hpp"
#include "host/SaverHosts.hpp"

#include <QtWidgets/QScrollArea>
#include <vector>

namespace host {

/// Programs that start screen savers, each with what to do about it; a line to copy can be selected. Main thread.
class SaverHostList final : public QScrollArea {
public:
    SaverHostList(const std::vector<SaverHost>& hosts, const HostTexts& texts);

    QSize sizeHint() const override;
};

}  // namespace host
