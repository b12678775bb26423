// The maker's fixed per-model data that the device object consults: which
// instruction-set versions mark the x-series, which brand an instruction set
// belongs to, the board-name table and the model each predicate names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "dksml.h"

namespace dksml {

// The models the device predicates name (IsDkk2, IsDkk6Series, ...).
enum class DkModel : uint32_t {
    Dkq7e,
    DkqHarvest,
    Dkq8,
    Dkq9,
    Dkk2,
    Dkk3,
    Dkk6,
    Dkk6u,
    Dkk6Series,
    DkMcm,
};

// True when the ISA version is one of the x-series versions (DK_SML_BRAND_DKK_X).
bool IsXSeriesIsaVersion(const DkSmlIsaVersion& isa);

// Brand of an instruction-set version, or nothing when the version is not listed.
std::optional<DkSmlDeviceBrand> GetBrandByIsaVersion(const DkSmlIsaVersion& isa);

// Brand of a PCI device id (physical or virtual function), or nothing.
std::optional<DkSmlDeviceBrand> GetBrandByPciDeviceId(uint32_t pciDeviceId);

// Board name of a PCI device id: the product name, followed by " VF" for the
// virtual function's id; empty when the id is not the maker's.
std::string GetBoardNameByPciDeviceId(uint32_t pciDeviceId);

// Whether a device with these ids is the named model.
bool IsModel(DkModel model, uint32_t pciDeviceId, const DkSmlIsaVersion& isa);

}  // namespace dksml
