#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// One topic of a bag.
struct BagTopic
{
  std::string name;
  std::string type;    ///< of its messages, as ROS writes it
  std::string format;  ///< of its messages: "cdr"
};

/// One message of a bag.
struct BagMessage
{
  std::int64_t number = 0;  ///< in its file
  std::int64_t topic = 0;   ///< its key among the topics of the file
  std::int64_t time = 0;    ///< [ns] since 1970, when it was received
  std::vector<char> data;
};

/// Messages of a file, in the order of their times; those with the same time in the order in which they were stored.
class BagMessages
{
public:
  virtual ~BagMessages() = default;

  /// Reads the next message; false at the end.
  ///
  /// \throws BadLine for a message that cannot be used; the next call goes on after it.
  /// \throws Error if the file is damaged.
  virtual bool next(BagMessage& message) = 0;
};

class UnpackedFile;

/// One file of a bag, in any storage.
class BagFile
{
public:
  virtual ~BagFile();
  BagFile(const BagFile&) = delete;
  BagFile& operator=(const BagFile&) = delete;

  const std::string& path() const { return _path; }
  const std::map<std::int64_t, BagTopic>& topics() const { return _topics; }

  /// Times of the first and the last message of any topic, if there is one.
  struct Span
  {
    std::int64_t first;
    std::int64_t last;
  };
  const std::optional<Span>& span() const { return _span; }

  /// Describes the storage, such as "SQLite, the file compressed by gzip".
  std::string storage() const;

  /// Describes the missing part of the file; empty if nothing is missing.
  virtual std::string lack() const { return {}; }

  /// Reads the messages of these topics. The file must outlive them.
  virtual std::unique_ptr<BagMessages> messagesOf(const std::vector<std::int64_t>& topics) = 0;

  /// Hands each different message of these topics once to `take`, in the order of their first occurrence. Returns false
  /// if the different messages are more than are kept for comparison: then the rest is left out. Messages that cannot
  /// be used are left out, too: BagMessages::next() throws for each of them.
  ///
  /// \throws Error if the file is damaged.
  bool forEachDifferent(const std::vector<std::int64_t>& topics, const std::function<void(BagMessage&)>& take);

  /// \name Refusals
  /// \throws BadLine about this message.
  /// @{
  [[noreturn]] void refuse(const BagMessage& message, const std::string& what) const;
  [[noreturn]] void refuseTime(const BagMessage& message) const;                          ///< the message is empty
  [[noreturn]] void refuseLength(const BagMessage& message, std::uint64_t length) const;  ///< [bytes] too many
  /// @}

protected:
  /// A file at `path`, and its contents if it is packed.
  BagFile(std::string path, std::unique_ptr<const UnpackedFile> unpacked);

  const std::string& _contents() const;        // path of the file that holds the contents
  virtual std::string _container() const = 0;  // such as "SQLite"

  void _addTopic(std::int64_t key, BagTopic topic) { _topics[key] = std::move(topic); }
  void _setSpan(const Span& span) { _span = span; }
  [[noreturn]] void _failForTopics() const;  // there are too many
  [[noreturn]] void _fail(const std::string& what) const;

private:
  std::string _path;
  std::unique_ptr<const UnpackedFile> _unpacked;  // null if the file is not packed
  std::map<std::int64_t, BagTopic> _topics;
  std::optional<Span> _span;
};

}  // namespace KV::recordings
