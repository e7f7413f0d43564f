// The string type of the GenApi interface: feature names, values and info texts.
#ifndef GENICAM_GCSTRING_H
#define GENICAM_GCSTRING_H

#include <cstddef>
#include <iosfwd>
#include <string>

namespace GenICam {

class gcstring {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    gcstring() = default;
    gcstring(const char* text) : m_text(text ? text : "") {}
    gcstring(const char* text, size_t count) : m_text(text ? text : "", text ? count : 0) {}
    gcstring(size_t count, char ch) : m_text(count, ch) {}
    gcstring(const std::string& text) : m_text(text) {}
    gcstring(std::string&& text) : m_text(std::move(text)) {}

    // Implicit conversion keeps code written for C strings (printf, strcmp) working.
    operator const char*() const { return m_text.c_str(); }
    const char* c_str() const { return m_text.c_str(); }
    const std::string& str() const { return m_text; }

    size_t size() const { return m_text.size(); }
    size_t length() const { return m_text.length(); }
    bool empty() const { return m_text.empty(); }
    size_t max_size() const { return m_text.max_size(); }
    void resize(size_t count, char ch = '\0') { m_text.resize(count, ch); }
    void clear() { m_text.clear(); }

    char& operator[](size_t index) { return m_text[index]; }
    const char& operator[](size_t index) const { return m_text[index]; }
    char& at(size_t index) { return m_text.at(index); }
    const char& at(size_t index) const { return m_text.at(index); }

    gcstring& assign(const char* text) { return *this = gcstring(text); }
    gcstring& assign(const char* text, size_t count) { return *this = gcstring(text, count); }
    gcstring& append(const gcstring& other) { return *this += other; }
    gcstring& append(size_t count, char ch);
    gcstring& operator+=(const gcstring& other);
    gcstring& operator+=(const char* text);
    gcstring& operator+=(char ch);

    int compare(const gcstring& other) const { return m_text.compare(other.m_text); }
    int compare(const char* text) const { return m_text.compare(text ? text : ""); }

    size_t find(char ch, size_t pos = 0) const { return m_text.find(ch, pos); }
    size_t find(const gcstring& text, size_t pos = 0) const {
        return m_text.find(text.m_text, pos);
    }
    size_t find(const char* text, size_t pos = 0) const;
    size_t rfind(char ch, size_t pos = npos) const { return m_text.rfind(ch, pos); }
    size_t rfind(const gcstring& text, size_t pos = npos) const;
    size_t find_first_of(const gcstring& chars, size_t pos = 0) const;
    size_t find_first_not_of(const gcstring& chars, size_t pos = 0) const;
    size_t find_last_of(const gcstring& chars, size_t pos = npos) const;
    size_t find_last_not_of(const gcstring& chars, size_t pos = npos) const;
    gcstring substr(size_t pos = 0, size_t count = npos) const;

    void swap(gcstring& other) noexcept { m_text.swap(other.m_text); }

private:
    std::string m_text;
};

gcstring operator+(const gcstring& left, const gcstring& right);
gcstring operator+(const gcstring& left, const char* right);
gcstring operator+(const char* left, const gcstring& right);
gcstring operator+(const gcstring& left, char right);

inline bool operator==(const gcstring& a, const gcstring& b) {
    return a.compare(b) == 0;
}
inline bool operator==(const gcstring& a, const char* b) {
    return a.compare(b) == 0;
}
inline bool operator==(const char* a, const gcstring& b) {
    return b.compare(a) == 0;
}
inline bool operator==(const gcstring& a, const std::string& b) {
    return a.str() == b;
}
inline bool operator==(const std::string& a, const gcstring& b) {
    return a == b.str();
}
inline bool operator!=(const gcstring& a, const gcstring& b) {
    return !(a == b);
}
inline bool operator!=(const gcstring& a, const char* b) {
    return !(a == b);
}
inline bool operator!=(const char* a, const gcstring& b) {
    return !(a == b);
}
inline bool operator!=(const gcstring& a, const std::string& b) {
    return !(a == b);
}
inline bool operator!=(const std::string& a, const gcstring& b) {
    return !(a == b);
}
inline bool operator<(const gcstring& a, const gcstring& b) {
    return a.compare(b) < 0;
}
inline bool operator<(const gcstring& a, const char* b) {
    return a.compare(b) < 0;
}
inline bool operator<(const char* a, const gcstring& b) {
    return b.compare(a) > 0;
}
inline bool operator>(const gcstring& a, const gcstring& b) {
    return b < a;
}
inline bool operator>(const gcstring& a, const char* b) {
    return a.compare(b) > 0;
}
inline bool operator>(const char* a, const gcstring& b) {
    return b.compare(a) < 0;
}
inline bool operator<=(const gcstring& a, const gcstring& b) {
    return !(b < a);
}
inline bool operator>=(const gcstring& a, const gcstring& b) {
    return !(a < b);
}

std::ostream& operator<<(std::ostream& out, const gcstring& text);
// Reads one whitespace-delimited word, as for std::string.
std::istream& operator>>(std::istream& in, gcstring& text);

} // namespace GenICam

namespace std {
template <>
struct hash<GenICam::gcstring> {
    size_t operator()(const GenICam::gcstring& text) const noexcept {
        return hash<string>()(text.str());
    }
};
} // namespace std

#endif
