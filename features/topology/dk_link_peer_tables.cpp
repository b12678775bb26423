// Board data: how many interconnect links each GPU position of a board has,
// and how many of them reach each peer position. Positions are the first
// number of a GPU's "showtopology" attribute.
//
// DKK6 boards (DKK6-A, DKK6-AL, DKK6-PL, DKK6U) carry up to eight GPUs in a
// full mesh: seven links per position, one to every other position.
// DKK1 boards carry four GPUs with twelve links per position: six to the
// side neighbour, four to the GPU across and two to the diagonal one.
// Positions 4..7 repeat 0..3 for the second board of a two-board chassis.
// Models without an interconnect (DKK2) have no row: their lookup answers 0.
#include "features/topology/dk_topology.h"

namespace dksml {
namespace {

DkLinkPeerTable MeshTable(uint32_t positions) {
    DkLinkPeerTable table;
    for (uint32_t self = 0; self < positions; ++self) {
        DkLinkPeerRow& row = table[self];
        row.linkCount = positions - 1;
        for (uint32_t peer = 0; peer < positions; ++peer) {
            if (peer != self) row.peers[peer] = 1;
        }
    }
    return table;
}

DkLinkPeerTable Dkk1Table() {
    // Per quad: side neighbour 6 links, across 4, diagonal 2 (12 in all).
    constexpr uint32_t c_side[4] = {1, 0, 3, 2};
    constexpr uint32_t c_across[4] = {2, 3, 0, 1};
    constexpr uint32_t c_diagonal[4] = {3, 2, 1, 0};
    DkLinkPeerTable table;
    for (uint32_t board = 0; board < 2; ++board) {
        for (uint32_t self = 0; self < 4; ++self) {
            DkLinkPeerRow& row = table[board * 4 + self];
            row.linkCount = 12;
            row.peers[board * 4 + c_side[self]] = 6;
            row.peers[board * 4 + c_across[self]] = 4;
            row.peers[board * 4 + c_diagonal[self]] = 2;
        }
    }
    return table;
}

}  // namespace

const DkLinkPeerTable& DkTopology::Dkk6PeerTable() {
    static const DkLinkPeerTable table = MeshTable(8);
    return table;
}

const DkLinkPeerTable& DkTopology::Dkk1PeerTable() {
    static const DkLinkPeerTable table = Dkk1Table();
    return table;
}

}  // namespace dksml
