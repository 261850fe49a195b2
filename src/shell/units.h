// The units menu: in which figure the air/fuel ratio is shown. The choice is one factor, kept over runs in
// lambda.txt as the index of the chosen item; no unit ever reaches the controller. The choice of a pressure unit only
// moves the check mark: pressures are in kPa throughout.
#pragma once

#include "calibration/scales.h"
#include "platform/ports.h"
#include "shell/frm_ecu.h"

namespace ecu::shell {

class Units {
public:
    Units(const platform::Ports& ports, calibration::Scales& scales, FrmEcu& form);

    // Takes over lambda.txt, which is made where there is none; one that cannot be read is told and left. An index
    // outside the menu leaves the factor 1 and no item checked.
    void start();
    // From now on a choice is kept in the file.
    void keep_choices() { keeps_choices_ = true; }

private:
    void choose_lambda(std::size_t index);
    void choose_pressure(std::size_t index);
    void write_file(std::size_t index);

    const platform::Ports& ports_;
    calibration::Scales& scales_;
    FrmEcu& form_;
    bool keeps_choices_ = false;
};

} // namespace ecu::shell
