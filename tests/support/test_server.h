#pragma once
// The tests' own PostgreSQL server with PostGIS, started for the test run
// by scripts/pg-test-server and named in TERVALO_TEST_PG: a fresh database
// for each project a test makes, and statements run as its superuser.

#include <libpq-fe.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

namespace tervalo::testing {

inline std::string testServer() {
  const char* c = std::getenv("TERVALO_TEST_PG");
  if (!c || !*c) throw std::runtime_error("TERVALO_TEST_PG names no test server: run the tests through ctest, which starts one");
  return c;
}

// A statement run in `database` as the server's superuser; the first row's first value.
inline std::string adminSql(const std::string& database, const std::string& sql) {
  PGconn* conn = PQconnectdb((testServer() + " dbname=" + database).c_str());
  if (PQstatus(conn) != CONNECTION_OK) {
    const std::string why = PQerrorMessage(conn);
    PQfinish(conn);
    throw std::runtime_error("the test server: " + why);
  }
  PGresult* r = PQexec(conn, sql.c_str());
  const ExecStatusType status = PQresultStatus(r);
  const std::string why = PQresultErrorMessage(r);
  const std::string first = status == PGRES_TUPLES_OK && PQntuples(r) > 0 ? PQgetvalue(r, 0, 0) : "";
  PQclear(r);
  PQfinish(conn);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) throw std::runtime_error(sql + ": " + why);
  return first;
}

// A new database with PostGIS and nothing else, named after `stem`.
inline std::string freshDatabase(const std::string& stem) {
  static int made = 0;
  const std::string name = stem + "_" + std::to_string(getpid()) + "_" + std::to_string(++made);
  for (int attempt = 0;; ++attempt) {
    try {
      adminSql("postgres", "CREATE DATABASE " + name + " TEMPLATE tervalo_template");
      return name;
    } catch (const std::runtime_error&) {
      if (attempt > 50) throw;  // another test copying the template at the same moment
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }
}

// A project's name for a database of the test server, in GDAL's form.
inline std::string databaseProject(const std::string& database, const std::string& role = "") {
  return "PG:" + testServer() + " dbname=" + database + (role.empty() ? "" : " user=" + role);
}

}  // namespace tervalo::testing
