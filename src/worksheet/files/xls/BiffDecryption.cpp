#include "worksheet/files/xls/BiffDecryption.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <numeric>

#include "basic/Error.h"

// Methods after Microsoft's [MS-OFFCRYPTO], "Office Document Cryptography Structure", and for the
// order of the XOR steps "The Microsoft Excel File Format" by Daniel Rentz, section File
// Protection.
namespace lodex::biff {
namespace {

constexpr std::string_view defaultPassword = "VelvetSweatshop";
constexpr size_t blockSize = 1024;

[[noreturn]] void failProtected() {
  throw FileError("The workbook is protected by a password");
}

std::string digest(GChecksumType kind, std::string_view bytes) {
  std::string result(kind == G_CHECKSUM_MD5 ? 16 : 20, '\0');
  gsize size = result.size();
  GChecksum* sum = g_checksum_new(kind);
  g_checksum_update(sum, reinterpret_cast<const guchar*>(bytes.data()),
                    static_cast<gssize>(bytes.size()));
  g_checksum_get_digest(sum, reinterpret_cast<guint8*>(result.data()), &size);
  g_checksum_free(sum);
  return result;
}

std::string passwordAsUtf16() {
  std::string bytes;
  for (char c : defaultPassword) bytes.append({c, '\0'});
  return bytes;
}

std::string littleEndian(std::uint32_t number) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &number, 4);
  return bytes;
}

class Rc4 {
 public:
  explicit Rc4(std::string_view key) {
    std::iota(state_.begin(), state_.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (size_t i = 0; i < state_.size(); ++i) {
      j = static_cast<std::uint8_t>(j + state_[i] +
                                    static_cast<unsigned char>(key[i % key.size()]));
      std::swap(state_[i], state_[j]);
    }
  }

  std::uint8_t next() {
    j_ = static_cast<std::uint8_t>(j_ + state_[++i_]);
    std::swap(state_[i_], state_[j_]);
    return state_[static_cast<std::uint8_t>(state_[i_] + state_[j_])];
  }

  std::string decrypted(std::string_view bytes) {
    std::string plain(bytes);
    for (char& c : plain) c = static_cast<char>(static_cast<std::uint8_t>(c) ^ next());
    return plain;
  }

 private:
  std::array<std::uint8_t, 256> state_{};
  std::uint8_t i_ = 0, j_ = 0;
};

// What is left readable in an encrypted stream: some records, and where each sheet begins.
size_t plainBytes(const Record& record) {
  switch (record.id) {
    case idBof2:
    case idBof3:
    case idBof4:
    case idBof5:
    case idFilePass:
    case idInterfaceHeader:
    case idUserExclusive:
    case idFileLock:
      return record.data.size();
    case idBoundSheet:
      return std::min<size_t>(4, record.data.size());
    default:
      return 0;
  }
}

// Calls change(position, byte, record) for every encrypted byte after the FILEPASS record.
template <typename Change>
void forEncryptedBytes(std::string& stream, const Record& filePass, Change change) {
  RecordStream records(stream, filePass.start);
  Record record;
  while (records.next(record)) {
    const size_t begin = record.start + 4;
    for (size_t i = plainBytes(record); i < record.data.size(); ++i) {
      change(begin + i, stream[begin + i], record);
    }
  }
}

// --- RC4: the key changes every 1024 bytes of the stream ---

class Rc4Key {
 public:
  virtual ~Rc4Key() = default;
  virtual Rc4 forBlock(std::uint32_t block) const = 0;
};

class StandardKey : public Rc4Key {
 public:
  explicit StandardKey(std::string_view salt) {
    const std::string start = digest(G_CHECKSUM_MD5, passwordAsUtf16()).substr(0, 5);
    std::string repeated;
    for (int i = 0; i < 16; ++i) (repeated += start) += salt;
    base_ = digest(G_CHECKSUM_MD5, repeated).substr(0, 5);
  }
  Rc4 forBlock(std::uint32_t block) const override {
    return Rc4(digest(G_CHECKSUM_MD5, base_ + littleEndian(block)));
  }

 private:
  std::string base_;
};

class CryptoApiKey : public Rc4Key {
 public:
  CryptoApiKey(std::string_view salt, unsigned keyBits)
      : base_(digest(G_CHECKSUM_SHA1, std::string(salt) + passwordAsUtf16())), bits_(keyBits) {}
  Rc4 forBlock(std::uint32_t block) const override {
    std::string key = digest(G_CHECKSUM_SHA1, base_ + littleEndian(block)).substr(0, bits_ / 8);
    if (bits_ == 40) key.resize(16, '\0');
    return Rc4(key);
  }

 private:
  std::string base_;
  unsigned bits_;
};

void decryptRc4(std::string& stream, const Record& filePass, const Rc4Key& key) {
  std::uint32_t block = 0;
  Rc4 cipher = key.forBlock(0);
  size_t done = 0;  // the cipher runs on over bytes that stay readable
  forEncryptedBytes(stream, filePass, [&](size_t position, char& byte, const Record&) {
    const auto wanted = static_cast<std::uint32_t>(position / blockSize);
    if (wanted != block) {
      block = wanted;
      cipher = key.forBlock(block);
      done = size_t{block} * blockSize;
    }
    for (; done < position; ++done) cipher.next();
    byte = static_cast<char>(static_cast<std::uint8_t>(byte) ^ cipher.next());
    ++done;
  });
}

void decryptStandard(std::string& stream, const Record& filePass, ByteReader in) {
  const std::string_view salt = in.bytes(16), verifier = in.bytes(16), hash = in.bytes(16);
  if (!in.ok()) failProtected();
  const StandardKey key(salt);
  Rc4 cipher = key.forBlock(0);
  const std::string plain = cipher.decrypted(verifier);
  if (cipher.decrypted(hash) != digest(G_CHECKSUM_MD5, plain)) failProtected();
  decryptRc4(stream, filePass, key);
}

void decryptCryptoApi(std::string& stream, const Record& filePass, ByteReader in) {
  constexpr unsigned rc4 = 0x6801;
  in.skip(4);  // flags, which the header repeats
  ByteReader header(in.bytes(in.u32()));
  header.skip(8);
  const unsigned algorithm = header.u32();
  header.skip(4);
  unsigned bits = header.u32();
  if (bits == 0) bits = 40;
  const size_t saltSize = in.u32();
  const std::string_view salt = in.bytes(std::min<size_t>(saltSize, 16));
  const std::string_view verifier = in.bytes(16);
  const size_t hashSize = in.u32();
  const std::string_view hash = in.bytes(std::min<size_t>(hashSize, 20));
  if (!in.ok() || !header.ok() || algorithm != rc4 || bits < 40 || bits > 128 || hashSize != 20) {
    failProtected();
  }
  const CryptoApiKey key(salt, bits);
  Rc4 cipher = key.forBlock(0);
  const std::string plain = cipher.decrypted(verifier);
  if (cipher.decrypted(hash) != digest(G_CHECKSUM_SHA1, plain)) failProtected();
  decryptRc4(stream, filePass, key);
}

// --- XOR ---

unsigned passwordHash() {
  unsigned hash = 0;
  unsigned turns = 0;
  for (char c : defaultPassword) {
    const unsigned wide = static_cast<unsigned>(c) << ++turns;
    hash ^= (wide & 0x7FFF) | wide >> 15;
  }
  return (hash ^ static_cast<unsigned>(defaultPassword.size()) ^ 0xCE4B) & 0xFFFF;
}

void decryptXor(std::string& stream, const Record& filePass, ByteReader in) {
  const unsigned key = in.u16();
  if (in.u16() != passwordHash() || !in.ok()) failProtected();
  constexpr std::string_view padding("\xBB\xFF\xFF\xBA\xFF\xFF\xB9\x80\x00\xBE\x0F\x00\xBF\x0F\x00",
                                     15);
  const std::string text = std::string(defaultPassword) + std::string(padding);
  std::array<std::uint8_t, 16> mask{};
  for (size_t i = 0; i < mask.size(); ++i) {
    const unsigned part = i % 2 == 0 ? key & 0xFF : key >> 8;
    mask[i] = std::rotl(static_cast<std::uint8_t>(static_cast<std::uint8_t>(text[i]) ^ part), 2);
  }
  forEncryptedBytes(stream, filePass, [&](size_t position, char& byte, const Record& record) {
    const std::uint8_t turned = std::rotl(static_cast<std::uint8_t>(byte), 3);
    byte = static_cast<char>(turned ^ mask[(position + record.data.size()) % mask.size()]);
  });
}

}  // namespace

void decryptStream(std::string& stream, const Record& filePass, int version) {
  // The record's bytes are used while the stream changes.
  const std::string data(filePass.data);
  ByteReader in(data);
  if (version < 8 || in.u16() == 0) {
    decryptXor(stream, filePass, in);
    return;
  }
  const unsigned major = in.u16();
  const unsigned minor = in.u16();
  if (major == 1 && minor == 1) {
    decryptStandard(stream, filePass, in);
  } else if (major >= 2 && major <= 4 && minor == 2) {
    decryptCryptoApi(stream, filePass, in);
  } else {
    failProtected();
  }
}

}  // namespace lodex::biff
