// What agent and client say to each other: one object on a private connection. Paths are byte
// strings ("ay"); a scan's token is the client's own number, which comes back in ScanProgress.
#pragma once

namespace Nodrix {

inline constexpr char kAgentObjectPath[] = "/com/vendrel/Nodrix";
inline constexpr char kAgentInterfaceName[] = "com.vendrel.Nodrix1";

// Hello comes first: it names the client. Activate and Deactivate take an ActivationMode.
inline constexpr char kAgentIntrospection[] = R"xml(
<node>
  <interface name='com.vendrel.Nodrix1'>
    <method name='Hello'>
      <arg type='s' name='client' direction='in'/>
      <arg type='x' name='pid' direction='out'/>
      <arg type='s' name='version' direction='out'/>
      <arg type='i' name='schema' direction='out'/>
    </method>
    <method name='Activate'>
      <arg type='au' name='fonts' direction='in'/>
      <arg type='u' name='mode' direction='in'/>
      <arg type='au' name='failed' direction='out'/>
      <arg type='au' name='restricted' direction='out'/>
      <arg type='au' name='shadowed' direction='out'/>
    </method>
    <method name='Deactivate'>
      <arg type='au' name='fonts' direction='in'/>
      <arg type='u' name='mode' direction='in'/>
    </method>
    <method name='DeclareDocuments'>
      <arg type='a(ayau)' name='documents' direction='in'/>
    </method>
    <method name='AddFolder'>
      <arg type='ay' name='path' direction='in'/>
      <arg type='u' name='token' direction='in'/>
      <arg type='(ttttt)' name='outcome' direction='out'/>
      <arg type='s' name='message' direction='out'/>
    </method>
    <method name='RemoveFolder'>
      <arg type='ay' name='path' direction='in'/>
      <arg type='s' name='message' direction='out'/>
    </method>
    <method name='Rescan'>
      <arg type='u' name='token' direction='in'/>
      <arg type='(ttttt)' name='outcome' direction='out'/>
      <arg type='s' name='message' direction='out'/>
    </method>
    <method name='StopScan'>
      <arg type='u' name='token' direction='in'/>
    </method>
    <method name='Status'>
      <arg type='a(usayuxsaay)' name='fonts' direction='out'/>
    </method>
    <method name='Stop'/>
    <signal name='FontActivated'><arg type='au' name='fonts'/></signal>
    <signal name='FontDeactivated'><arg type='au' name='fonts'/></signal>
    <signal name='FontMissing'><arg type='au' name='fonts'/></signal>
    <signal name='LibraryChanged'/>
    <signal name='ShuttingDown'/>
    <signal name='ScanProgress'>
      <arg type='u' name='token'/>
      <arg type='t' name='done'/>
      <arg type='t' name='all'/>
      <arg type='ay' name='path'/>
    </signal>
  </interface>
</node>
)xml";

}  // namespace Nodrix
