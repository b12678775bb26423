// Board grouping: devices whose board serials match sit on one board.
#include <cstring>

#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"

namespace dksml {
namespace {

constexpr uint32_t c_unknownBoard = UINT32_MAX;
constexpr uint32_t c_lastPfIndex = 99;
constexpr size_t c_boardSerialSize = 32;
constexpr uint32_t c_maxBoardDevices = sizeof(DkBoardInfo::deviceIds) / sizeof(DkBoardInfo::deviceIds[0]);

// Read through the reader the feature registry installs (see DkPassBuilders);
// without one no serial is known.
DkSmlReturn ReadBoardSerial(IDkDevice& device, char (&serial)[c_boardSerialSize]) {
    const auto reader = GetPassBuilders().boardSerial;
    if (reader == nullptr) return DK_SML_ERROR_NOT_SUPPORTED;
    uint32_t size = c_boardSerialSize;
    return reader(device, serial, &size);
}

}  // namespace

// Boards are recognised by neighbours in index order: a device whose serial
// equals that of the device examined just before it shares its board.
void DkSystemManager::ConstructBoardIdMap() {
    State& s = *m_state;
    uint32_t nextBoardId = 0;
    uint32_t previousBoardId = c_unknownBoard;
    char previousSerial[c_boardSerialSize] = {};
    for (const auto& [index, device] : s.devices) {
        if (!device || device->IsVf()) continue;
        char serial[c_boardSerialSize] = {};
        if (ReadBoardSerial(*device, serial) != DK_SML_SUCCESS) {
            s.boardIds[index] = c_unknownBoard;
            previousBoardId = c_unknownBoard;
            continue;
        }
        bool samePrevious = previousBoardId != c_unknownBoard &&
                            std::memcmp(serial, previousSerial, c_boardSerialSize) == 0;
        uint32_t boardId = samePrevious ? previousBoardId : nextBoardId++;
        s.boardIds[index] = boardId;
        previousBoardId = boardId;
        std::memcpy(previousSerial, serial, c_boardSerialSize);
    }
}

// The map is built by the discovery pass, before the state is published.
uint32_t DkSystemManager::GetDeviceBoardId(uint32_t deviceIndex) {
    Hold hold;
    const auto& boardIds = ReadState().boardIds;
    auto it = boardIds.find(deviceIndex);
    return it == boardIds.end() ? c_unknownBoard : it->second;
}

DkSmlReturn DkSystemManager::GetDeviceBoardInfo(uint32_t deviceIndex, DkBoardInfo* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    Hold hold;
    uint32_t boardId = GetDeviceBoardId(deviceIndex);
    if (boardId == c_unknownBoard) return DK_SML_ERROR_NOT_SUPPORTED;
    info->boardId = boardId;
    info->deviceCount = 0;
    for (const auto& [index, id] : ReadState().boardIds) {
        if (id != boardId || index > c_lastPfIndex) continue;
        if (info->deviceCount == c_maxBoardDevices) break;
        info->deviceIds[info->deviceCount++] = index;
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
