#include "hardening/malformed.h"

#include <vector>

namespace vndiscover {
namespace {

struct Node {
    uint8_t tag;
    Bytes content = {};  // of a node without children
    std::vector<Node> children = {};
};

Bytes LengthBytes(uint64_t length, int count) {
    Bytes bytes = {static_cast<uint8_t>(0x80 | count)};
    for (int i = count - 1; i >= 0; --i) bytes.push_back(static_cast<uint8_t>(length >> (8 * i)));
    return bytes;
}

Bytes Header(uint8_t tag, size_t length) {
    Bytes header = {tag};
    if (length < 0x80) return header + Bytes{static_cast<uint8_t>(length)};
    return header + LengthBytes(length, length < 0x100 ? 1 : length < 0x10000 ? 2 : 3);
}

// False: the bytes are no row of whole values.
bool Parse(const Bytes& bytes, std::vector<Node>& nodes) {
    for (size_t at = 0; at < bytes.size();) {
        if (bytes.size() - at < 2) return false;
        Node node = {bytes[at]};
        size_t length = bytes[at + 1];
        at += 2;
        if (length > 0x80) {
            size_t count = length - 0x80;
            for (length = 0; count > 0 && at < bytes.size(); --count) {
                length = (length << 8) | bytes[at++];
            }
            if (count > 0) return false;
        }
        if (length > bytes.size() - at) return false;
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        node.content.assign(begin, begin + static_cast<std::ptrdiff_t>(length));
        at += length;
        const bool constructed =
            (node.tag & 0x20) != 0 || (node.tag == 0x04 && length > 2 && node.content[0] == 0x30);
        if (!constructed || !Parse(node.content, node.children)) node.children.clear();
        nodes.push_back(std::move(node));
    }
    return true;
}

// Encodes a tree with one node edited. Written from its end, so that every length is known when its
// header's turn comes.
class Editor {
  public:
    using Edit = std::function<Bytes(uint8_t tag, const Bytes& content)>;
    // The node of that number is replaced by what `edit` gives. Its new size counts in the lengths
    // around it, or its old one does.
    Editor(int number, bool adaptsLengths, const Edit& edit)
        : number_(number), adaptsLengths_(adaptsLengths), edit_(edit) {}

    Bytes Encode(const Node& root) {
        backwards_.reserve(4096);
        Write(root);
        return Bytes(backwards_.rbegin(), backwards_.rend());
    }

  private:
    // Returns the size that counts.
    size_t Write(const Node& node) {
        const bool isMine = seen_++ == number_;
        const size_t start = backwards_.size();
        size_t inner = node.content.size();
        if (node.children.empty()) {
            Put(node.content);
        } else {
            inner = 0;
            for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
                inner += Write(*child);
            }
        }
        const Bytes header = Header(node.tag, inner);
        const size_t plainSize = header.size() + inner;
        if (!isMine) {
            Put(header);
            return plainSize;
        }
        const Bytes content(backwards_.rbegin(),
                            backwards_.rend() - static_cast<std::ptrdiff_t>(start));
        backwards_.resize(start);
        const Bytes edited = edit_(node.tag, content);
        Put(edited);
        return adaptsLengths_ ? edited.size() : plainSize;
    }
    void Put(const Bytes& bytes) {
        backwards_.insert(backwards_.end(), bytes.rbegin(), bytes.rend());
    }

    int number_;
    bool adaptsLengths_;
    const Edit& edit_;
    int seen_ = 0;
    Bytes backwards_;
};

Node Root(const Bytes& good) {
    std::vector<Node> nodes;
    return Parse(good, nodes) && nodes.size() == 1 ? nodes[0] : Node{0};
}

int Count(const Node& node) {
    int count = 1;
    for (const Node& child : node.children) count += Count(child);
    return count;
}

void EditOne(const Node& root, int number, const UseDatagram& use, const Editor::Edit& edit) {
    for (const bool adapts : {false, true}) {
        use(Editor(number, adapts, edit).Encode(root));
    }
}

void EditEach(const Bytes& good, const UseDatagram& use, const Editor::Edit& edit) {
    const Node root = Root(good);
    for (int number = 0; number < Count(root); ++number) EditOne(root, number, use, edit);
}

// The hostile lengths of a value whose content has that size; an index beyond them gives none.
Bytes LengthForm(size_t index, size_t size) {
    const uint64_t lengths[] = {
        0, 1, 127, 128, 255, 0xFFFF, 0x7FFFFFFFu, 0xFFFFFFFFu, size + 1, size != 0 ? size - 1 : 0};
    const size_t kForms = 7;  // short, 1 to 5 bytes, and 126 bytes
    if (index == 0) return {0x80};
    if (index == 1) return {0xFF};
    index -= 2;
    if (index >= std::size(lengths) * kForms) return {};
    const uint64_t length = lengths[index / kForms];
    const int bytes = static_cast<int>(index % kForms);
    if (bytes == 0) return {static_cast<uint8_t>(length & 0x7F)};
    if (bytes < 6) return LengthBytes(length, bytes);
    const Bytes last = LengthBytes(length, 8);  // with its own first byte, which is not wanted
    return Bytes{0xFE} + Bytes(118, 0) + Bytes(last.begin() + 1, last.end());
}

// Within so many SEQUENCEs.
Bytes Wrapped(const Bytes& inner, int depth) {
    std::vector<Bytes> headers;
    size_t size = inner.size();
    for (int i = 0; i < depth; ++i) {
        headers.push_back(Header(0x30, size));
        size += headers.back().size();
    }
    Bytes all;
    for (auto header = headers.rbegin(); header != headers.rend(); ++header) {
        all.insert(all.end(), header->begin(), header->end());
    }
    return all + inner;
}

void SwapNeighbours(Node& node, const Node& root, const UseDatagram& use) {
    const auto emit = [&] { use(Editor(-1, true, nullptr).Encode(root)); };
    for (size_t i = 0; i + 1 < node.children.size(); ++i) {
        std::swap(node.children[i], node.children[i + 1]);
        emit();
        std::swap(node.children[i], node.children[i + 1]);
    }
    for (Node& child : node.children) SwapNeighbours(child, root, use);
}

}  // namespace

void WithEveryLength(const Bytes& good, const UseDatagram& use) {
    for (size_t i = 0; !LengthForm(i, 0).empty(); ++i) {
        EditEach(good, use, [i](uint8_t tag, const Bytes& content) {
            return Bytes{tag} + LengthForm(i, content.size()) + content;
        });
    }
}

void WithSwappedTags(const Bytes& good, const UseDatagram& use) {
    for (const int other : {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x1F, 0x24, 0x30, 0x31,
                            0x3F, 0x40, 0x41, 0x42, 0x43, 0x44, 0x46, 0x80, 0x81, 0x82, 0xA0,
                            0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xFF}) {
        EditEach(good, use, [other](uint8_t, const Bytes& content) {
            return Header(static_cast<uint8_t>(other), content.size()) + content;
        });
    }
    Node root = Root(good);
    SwapNeighbours(root, root, use);
}

void Truncated(const Bytes& good, const UseDatagram& use) {
    for (size_t size = 0; size < good.size(); ++size) use(Prefix(good, size));
}

void Nested(const Bytes& good, int deepest, int step, const UseDatagram& use) {
    constexpr int kShallow = 8;
    const Node root = Root(good);
    const int nodes = Count(root);
    for (int depth = 1; depth <= deepest; depth += step) {
        for (int number = 0; number < nodes; ++number) {
            if (depth > kShallow && number != depth % nodes) continue;
            EditOne(root, number, use, [depth](uint8_t tag, const Bytes& content) {
                return Wrapped(Header(tag, content.size()) + content, depth);
            });
            EditOne(root, number, use, [depth](uint8_t tag, const Bytes& content) {
                Bytes headers;
                for (int i = 0; i < depth; ++i) headers.insert(headers.end(), {0x30, 0x80});
                return headers + Header(tag, content.size()) + content;
            });
        }
    }
}

int EveryMalformed(const Bytes& good, int nestingStep, const UseDatagram& use) {
    constexpr int kDeepest = 1000;
    int count = 0;
    const UseDatagram counted = [&](const Bytes& datagram) {
        ++count;
        use(datagram);
    };
    WithEveryLength(good, counted);
    WithSwappedTags(good, counted);
    Truncated(good, counted);
    Nested(good, kDeepest, nestingStep, counted);
    return count;
}

}  // namespace vndiscover
