// The configuration of the app host.
#pragma once

#include <Tal/Export.h>

#include <atomic>
#include <boost/optional.hpp>
#include <string>
#include <vector>

namespace Tal {

/// Start-up switches and paths of the app host. What the file does not say keeps its default, and what was read before
/// a fault in the file stays.
///
/// The five flags may be read and changed from any thread at any time. Paths and data points are written while loading
/// only, which is done once, before other threads read them.
///
/// The file is XML; names are case-sensitive, unknown elements and attributes are ignored, an empty attribute counts as
/// absent, and a flag is false for "0" and true for every other text:
///
///     <TalAppHostConfig WithoutKNX="1" TerminateOnFirmwareUpdate="0">
///       <ObjectModelConfig Path="/path"/>
///       <ZelConfig><ResponseDps><Dp ObjId="100101"/></ResponseDps></ZelConfig>
///       <Debugging Active="1">
///         <App RootPath="/path"/>
///         <ManagedApp RootPath="/path"/>
///         <AppHost RootPath="/path" DisableStartup="1"/>
///         <AppConnectorHost RootPath="/path" DisableStartup="1"/>
///       </Debugging>
///     </TalAppHostConfig>
///
/// Below Debugging only Active counts unless the app debug mode is on by then. Where the app host does not start, the
/// app connector host does not either.
class TALOBJECTMODEL_EXPORT AppHostConfiguration {
 public:
  /// All flags false, no paths, no data points. Reads nothing.
  AppHostConfiguration();
  AppHostConfiguration(const AppHostConfiguration&) = delete;
  AppHostConfiguration& operator=(const AppHostConfiguration&) = delete;

  /// Where the configuration stands: "/opt/userdata/etc/talapphost/talapphostconfig.xml".
  static const char* ConfigurationFile() noexcept;

  /// Loads ConfigurationFile(). A file that cannot be read leaves one ERROR record and
  /// everything as it was; a broken one two.
  void LoadConfigurationFile();
  /// The same from another file. @return success.
  bool LoadConfigurationFile(const std::string& path);

  /// Parses and applies the zero-terminated @p text, which is changed on the way. Elements may be nested up to 256
  /// deep; a file may be 16 MiB long.
  /// @return  false after one ERROR record: malformed XML, or a number that is none or does not fit.
  bool LoadAppHostConfigXML(char* text);

  /// A flag as the file, or a setter, left it.
  /// @{
  bool IsInAppDebugMode() const;                    ///< Debugging/Active
  bool IsAppHostStartupDisabled() const;            ///< Debugging/AppHost/DisableStartup
  bool IsAppConnectorHostStartupDisabled() const;   ///< Debugging/AppConnectorHost/DisableStartup, or the one above
  bool IsAppHostWithoutKNX() const;                 ///< WithoutKNX
  bool IsAppHostTerminateOnFirmwareUpdate() const;  ///< TerminateOnFirmwareUpdate
  /// @}

  /// Changes what IsInAppDebugMode() tells.
  void SetAppDebugMode(bool isOn);
  /// The same. @return  the previous value.
  bool ReplaceAppDebugMode(bool isOn);
  /// Changes what IsAppHostStartupDisabled() tells, and nothing of the app connector host.
  void SetAppHostStartupDisabled(bool isDisabled);
  /// Changes what IsAppConnectorHostStartupDisabled() tells. @return  the previous value.
  bool SetAppConnectorHostStartupDisabled(bool isDisabled);

  /// A path as it stands in the file; nothing when no file that was loaded named one.
  /// @{
  const boost::optional<std::string>& GetRootPathNativeApp() const;         ///< Debugging/App/RootPath
  const boost::optional<std::string>& GetRootPathManagedApp() const;        ///< Debugging/ManagedApp/RootPath
  const boost::optional<std::string>& GetRootPathAppHost() const;           ///< Debugging/AppHost/RootPath
  const boost::optional<std::string>& GetRootPathAppConnectorHost() const;  ///< Debugging/AppConnectorHost/RootPath
  const boost::optional<std::string>& GetPathObjectModelConfig() const;     ///< ObjectModelConfig/Path
  /// @}
  /// Identifiers of ZelConfig/ResponseDps in the order of the file; loading again appends.
  const std::vector<unsigned long>& GetResponseDataPoints() const;

  /// A setting as tools show it.
  struct Setting {
    std::string name;   ///< element and attribute: "Debugging/AppHost/DisableStartup"
    std::string value;  ///< "true", "false", the text, numbers separated by blanks; empty: none
    bool isFlag;        ///< "true" or "false"
    bool isFromFile;    ///< said in a file that was loaded, or follows from it; else the default, or set by the program
  };
  /// All settings in the order of the file.
  std::vector<Setting> Describe() const;

 private:
  friend struct AppHostConfigRows;

  std::atomic<bool> m_appDebugMode{false};
  std::atomic<bool> m_appHostStartupDisabled{false};
  std::atomic<bool> m_appConnectorHostStartupDisabled{false};
  std::atomic<bool> m_withoutKnx{false};
  std::atomic<bool> m_terminateOnFirmwareUpdate{false};
  boost::optional<std::string> m_rootPathNativeApp;
  boost::optional<std::string> m_rootPathManagedApp;
  boost::optional<std::string> m_rootPathAppHost;
  boost::optional<std::string> m_rootPathAppConnectorHost;
  boost::optional<std::string> m_pathObjectModelConfig;
  std::vector<unsigned long> m_responseDataPoints;
  unsigned m_fromFile = 0;  ///< one bit for each row of the table of attributes that was said in a file
};

/// The characters of a file, unchanged; nothing when it cannot be opened or read (a directory, for instance).
TALOBJECTMODEL_EXPORT boost::optional<std::vector<char>> LoadFile(const std::string& path);

}  // namespace Tal
