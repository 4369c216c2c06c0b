#include <skeigiot/session/possiblejobs.hpp>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstddef>

namespace
{

/// Lets the process open that many files, until the end of the test.
class OpenFilesLimit
{
public:
  explicit OpenFilesLimit(rlim_t files)
  {
    getrlimit(RLIMIT_NOFILE, &_saved);
    struct rlimit limit = _saved;
    limit.rlim_cur = files;
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~OpenFilesLimit() { setrlimit(RLIMIT_NOFILE, &_saved); }
  OpenFilesLimit(const OpenFilesLimit&) = delete;
  OpenFilesLimit& operator=(const OpenFilesLimit&) = delete;

private:
  struct rlimit _saved = {};
};

TEST(PossibleJobs, AreThoseWantedWhereFilesSuffice)
{
  const OpenFilesLimit limit(256);
  EXPECT_EQ(1U, KV::session::possibleJobs(1));
  EXPECT_EQ(56U, KV::session::possibleJobs(56));
}

TEST(PossibleJobs, AreFewerWhereFilesDoNotSuffice)
{
  const OpenFilesLimit limit(256);
  EXPECT_EQ(56U, KV::session::possibleJobs(57));
  EXPECT_EQ(56U, KV::session::possibleJobs(1024));
}

TEST(PossibleJobs, AreOneAtLeast)
{
  for (const rlim_t files : {16U, 32U, 35U})
  {
    const OpenFilesLimit limit(files);
    EXPECT_EQ(1U, KV::session::possibleJobs(8));
  }
}

}  // namespace
