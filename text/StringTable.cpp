// Generated once from the catalogue table; edit entries here by hand.
#include "text/StringTable.hpp"

namespace Lanyx {

// Id 2 is computed at lookup time; id 3 is the empty text.
const char* const kStringTable[kStringCount] = {
    /*   0 */ "Customize System/View Logs",
    /*   1 */ "Shut Down/Restart",
    /*   2 */ "",
    /*   3 */ "",
    /*   4 */ "System Customization",
    /*   5 */ "Configure Password",
    /*   6 */ "Configure Lockdown Mode",
    /*   7 */ "Configure Management Network",
    /*   8 */ "Restart Management Network",
    /*   9 */ "Test Management Network",
    /*  10 */ "Network Restore Options",
    /*  11 */ "View Support Information",
    /*  12 */ "View System Logs",
    /*  13 */ "Troubleshooting Options",
    /*  14 */ "Reset System Configuration",
    /*  15 */ "Configure Keyboard",
    /*  16 */ "Restart Management Network: Error",
    /*  17 */ "Enable Management Network: Error",
    /*  18 */ "Disable Management Network: Error",
    /*  19 */ "Management network interface cannot be found.",
    /*  20 */ "Operation on the management network interface failed.",
    /*  21 */ "To prevent unauthorized access to this system, set the password for the user.",
    /*  22 */
    "When enabled, lockdown mode prevents users from logging directly into this host. The host "
    "will only be accessible through this local console or an authorized centralized management "
    "application.",
    /*  23 */ "To view or modify this host's management network settings in detail, press <Enter>.",
    /*  24 */
    "Restarting the management network interface may be required to restore networking or to renew "
    "a DHCP lease.\n\nRestarting the management network will result in a brief network outage that "
    "may temporarily affect running virtual machines.\n\nNote: If a renewed DHCP lease results in "
    "a new network identity (e.g., IP address or hostname), remote management software will be "
    "disconnected.",
    /*  25 */
    "To perform a brief network test, press <Enter>.\n\nBy default, this test will attempt to ping "
    "the configured default gateway, ping the configured primary and alternate DNS servers, and "
    "resolve the configured hostname.",
    /*  26 */
    "To view various network restore options like full network restore, move Management network "
    "from misconfigured fabric to standard switch or correct misconfigured fabric Management "
    "network port properties.",
    /*  27 */ "Press the corresponding key to view a log.\nPress <Q> to return to this screen.",
    /*  28 */
    "To view various troubleshooting mode options like Enable Ostra Shell, Enable SSH and Restart "
    "Agents.",
    /*  29 */
    "Warning!\n\nAll system parameters will be reverted to their software defaults, including any "
    "parameters customized by the hardware manufacturer. The root password will be reset to "
    "nothing, which may allow unauthorized access to your system. All virtual machines will be "
    "unregistered.\n\nThis operation requires a restart of the host. It is recommended to "
    "previously shut down or migrate running virtual machines off this host.",
    /*  30 */
    "Warning!\n\nAll custom extensions will be removed.\n\nThis operation requires a restart of "
    "the host. It is recommended to previously shut down or migrate running virtual machines off "
    "this host.",
    /*  31 */ "Network identity acquired from DHCP server",
    /*  32 */ "To select the layout type for the keyboard of this host, press <Enter>.",
    /*  33 */ "Change default password to prevent unauthorized access",
    /*  34 */ "Unknown",
    /*  35 */ "IPv4 Address",
    /*  36 */ "IPv6 Addresses",
    /*  37 */ "Attributed addresses",
    /*  38 */ "Default Gateway",
    /*  39 */ "Subnet Mask",
    /*  40 */ "Hostname",
    /*  41 */ "Primary DNS Server",
    /*  42 */ "Alternate DNS Server",
    /*  43 */ "IPv6 DNS Server",
    /*  44 */ "Configure Management Network",
    /*  45 */ "Network Adapters",
    /*  46 */ "VLAN (optional)",
    /*  47 */ "IPv4 Configuration",
    /*  48 */ "IPv6 Configuration",
    /*  49 */ "IPv6 is enabled.",
    /*  50 */ "IPv6 is disabled.",
    /*  51 */ "DNS Configuration",
    /*  52 */ "Custom DNS Suffixes",
    /*  53 */
    "The adapters listed here provide the default network connection to and from this host. When "
    "two or more adapters are used, connections will be fault-tolerant and outgoing traffic will "
    "be load-balanced.",
    /*  54 */
    "A VLAN is a virtual network within a physical network. Because several VLANs can co-exist on "
    "the same physical network segment, VLAN configuration and partitioning is often more "
    "flexible, better isolated, and less expensive than flat networks based on traditional "
    "physical topology.\n\nIf you are unsure how to configure or use a VLAN, it is safe to leave "
    "this option unset.",
    /*  55 */
    "This host can obtain an IPv4 address and other networking parameters automatically if your "
    "network includes a DHCP server. If not, ask your network administrator for the appropriate "
    "settings.",
    /*  56 */
    "This host can obtain IPv6 addresses and other networking parameters automatically if your "
    "network includes a DHCPv6 server or supports Router Advertisement.",
    /*  57 */
    "This host can be configured to support IPv6. A restart of the host will be required to enable "
    "or disable IPv6.",
    /*  58 */ "The support for IPv6 will be enabled after the next reboot.",
    /*  59 */
    "If this host is configured using DHCP, DNS server addresses and other DNS parameters can be "
    "obtained automatically. If not, ask your network administrator for the appropriate settings.",
    /*  60 */
    "When using short, unqualified names, DNS queries will attempt to locate the specified host by "
    "appending the suffixes listed here in the order shown until a match is found or the list is "
    "exhausted.\n\nIf no suffixes are specified here, a default suffix list is derived from the "
    "local domain name.",
    /*  61 */ "Network Configuration Error",
    /*  62 */ "Network Restore Options",
    /*  63 */ "Create Standard Switch",
    /*  64 */ "Create Port Group",
    /*  65 */ "Migrate Tessel NIC to Standard Switch",
    /*  66 */ "Restore Network Settings",
    /*  67 */ "Restore Standard Switch",
    /*  68 */ "Restore fabric",
    /*  69 */ "Create a new standard virtual switch by name and an uplink to be added.",
    /*  70 */
    "Create a new port group by name and standard virtual switch to which the port group should be "
    "added.",
    /*  71 */ "Migrate a tesselnic to the standard virtual switch of a chosen portgroup.",
    /*  72 */
    "Restoring the network settings will revert all network configuration and will automatically "
    "configure the network with defaults.\n\nRestoring the network settings will stop all the "
    "running virtual machines on the host.",
    /*  73 */
    "All management network and associated uplinks can be moved onto a new xbar in order to "
    "restore network connectivity to Fleetwatch. All interfaces apart from management interface "
    "will be disabled.\nTry Restore fabric option to manually repair misconfigured fabric.",
    /*  74 */
    "Reconfigure properties of misconfigured fabric Management network port.\n\nA new fabric host "
    "local port will be created with the reconfigured properties and the management network will "
    "be moved to this new port. All other properties will be cloned from original FabricPort. This "
    "operation is available only for Zephora fabric",
    /*  75 */ "Network Adapters",
    /*  76 */
    "Select the adapters for this host's default management network connection. Use two or more "
    "adapters for fault-tolerance and load-balancing.",
    /*  77 */ "Network Adapters: Warning",
    /*  78 */ "One or more of the selected adapters are already used for other connections.",
    /*  79 */ "Remove these adapters from their current connections?",
    /*  80 */ "Invalid IP address",
    /*  81 */ "Please reenter a valid IPv4 address (x.x.x.x).",
    /*  82 */ "Please reenter a valid IPv6 network address (x:x:x/x).",
    /*  83 */ "Invalid IP or IPv6 address.",
    /*  84 */ "Invalid subnet",
    /*  85 */ "Please reenter a valid subnet (x.x.x.x).",
    /*  86 */ "Invalid scope",
    /*  87 */ "Cannot add a link-local address as static address.",
    /*  88 */ "Invalid gateway address",
    /*  89 */ "Please reenter a valid gateway address (x.x.x.x).",
    /*  90 */ "Please reenter a valid IPv6 gateway address (x:x:x).",
    /*  91 */ "Link-local addresses are not supported as default gateway.",
    /*  92 */ "Invalid DNS server address",
    /*  93 */ "Please reenter a valid DNS server address (IP or IPv6).",
    /*  94 */ "Invalid VLAN ID",
    /*  95 */ "Please reenter a valid VLAN ID (1-4095).",
    /*  96 */
    "You entered a VLAN ID of 4095. This host will receive all VLAN-tagged frames and be able to "
    "send any VLAN-tagged frame.\n\nUnless this is specifically intended, it is best not to "
    "configure a VLAN ID of 4095.",
    /*  97 */
    "If you are unsure how to configure or use a VLAN, it is safe to leave this option unset.",
    /*  98 */ "VLAN ID (1-4094, or 4095 to access all VLANs):",
    /*  99 */ "IPv4 Configuration",
    /* 100 */
    "This host can obtain network settings automatically if your network includes a DHCP server. "
    "If it does not, the following settings must be specified:",
    /* 101 */ "Disable IPv4 configuration for management network",
    /* 102 */ "Use dynamic IPv4 address and network configuration",
    /* 103 */ "Set static IPv4 address and network configuration:",
    /* 104 */ "IPv6 Configuration",
    /* 105 */
    "This host can obtain network settings automatically if your network supports Stateless "
    "Address Autoconfiguration (SLAAC) or includes a DHCPv6 server. If it does not, static "
    "settings must be specified:",
    /* 106 */ "Disable IPv6 (restart required)",
    /* 107 */ "Use dynamic IPv6 address and network configuration",
    /* 108 */ "Use DHCPv6",
    /* 109 */ "Set static IPv6 address and network configuration",
    /* 110 */ "Static address",
    /* 111 */ "Default gateway",
    /* 112 */ "Warning",
    /* 113 */ "No adapter",
    /* 114 */ "Automatic",
    /* 115 */ "None",
    /* 116 */ "Manual",
    /* 117 */ "Set",
    /* 118 */ "Not set",
    /* 119 */ "Enabled",
    /* 120 */ "Disabled",
    /* 121 */ "Done.",
    /* 122 */ "DNS Configuration",
    /* 123 */
    "This host can only obtain DNS settings automatically if it also obtains its IP configuration "
    "automatically.",
    /* 124 */ "Obtain DNS server addresses and a hostname automatically",
    /* 125 */ "Use the following DNS server addresses and hostname:",
    /* 126 */
    "DNS queries will attempt to locate hosts by appending the suffixes specified here to short, "
    "unqualified names.\n\nUse spaces or commas to separate multiple entries.",
    /* 127 */ "Suffixes:",
    /* 128 */ "Restart Management Network: Confirm",
    /* 129 */
    "Restarting the management network will result in a brief network outage. It may disconnect "
    "remote management software and affect running virtual machines.",
    /* 130 */ "Restart management network now?",
    /* 131 */ "Restart Management Network",
    /* 132 */ "Please wait while the management network restarts.",
    /* 133 */ "Stopping management network.",
    /* 134 */ "Starting management network.",
    /* 135 */ "IP address is ",
    /* 136 */ "Restore Standard Switch",
    /* 137 */
    "All management network and associated uplinks can be moved onto a new xbar in order to "
    "restore network connectivity to Fleetwatch.",
    /* 138 */ "Move the management network onto a standard switch?",
    /* 139 */ "To manage this host, go to:",
    /* 140 */
    "Warning: DHCP lookup failed. You may be unable to access this system until you customize its "
    "network configuration.",
    /* 141 */
    "Warning: Host is running in audit mode. Your configuration will not be persistent across "
    "reboots. Please contact support.",
    /* 142 */ "Authentication Required",
    /* 143 */ "Enter an authorized login name and password for ",
    /* 144 */ "Enter the smart card login PIN for ",
    /* 145 */ "Authentication Denied",
    /* 146 */ "Direct console access has been disabled by the administrator for ",
    /* 147 */ "Login Name:",
    /* 148 */ "Login Id:",
    /* 149 */ "Password:",
    /* 150 */ "PIN:",
    /* 151 */ "Authentication failed",
    /* 152 */ "Invalid login or password.",
    /* 153 */ "User does not have permission to login to LANYX.",
    /* 154 */
    "Password has expired.\nYou will be prompted to set a new password and then login again.",
    /* 155 */ "Configure Password",
    /* 156 */ "Setting the password will prevent unauthorized access to this host.",
    /* 157 */ "Old Password:",
    /* 158 */ "New Password:",
    /* 159 */ "Confirm Password:",
    /* 160 */ "Configure Password: Error",
    /* 161 */ "Configure Password: Warning",
    /* 162 */ "The old password you entered is incorrect",
    /* 163 */ "The new password and the confirmed password do not match.",
    /* 164 */ "Empty passwords are not allowed.",
    /* 165 */ "New password is same as old password. Are you sure?",
    /* 166 */
    "The password change operation failed.\nPlease ensure that your password meets the complexity "
    "criteria set by the system.",
    /* 167 */
    "Error while storing user account information to persistent storage. The new information may "
    "not be available after reboot.",
    /* 168 */ "Shut Down/Restart",
    /* 169 */
    "Remote management software is recommended to safely shut down or restart this host.\n\nBy "
    "default, running virtual machines will be powered off, suspended, or shut down according to "
    "the current system shutdown policy.\nIf this host is part of an HA cluster, then HA will not "
    "restart these VMs unless they are forcefully terminated.",
    /* 170 */ "Forcefully terminate running VMs, if any ...",
    /* 171 */ "Shut Down Host",
    /* 172 */ "Shutdown in progress...",
    /* 173 */ "Warning: VMs running on the host",
    /* 174 */
    "Host has VMs running. Are you sure you want to shutdown/restart the host or restore the "
    "network.",
    /* 175 */ "Restart Host",
    /* 176 */ "Restart in progress...",
    /* 177 */ "Reset System Configuration: Confirm",
    /* 178 */
    "Warning! All system parameters will be reverted to their software defaults, and host "
    "configuration will be lost.",
    /* 179 */ "Reset System Configuration now?",
    /* 180 */ "Reset System Configuration",
    /* 181 */ "Please wait while the default settings are restored.",
    /* 182 */ "Default settings are restored. Press <Enter> to restart your host.",
    /* 183 */ "Remove Custom Extensions: Confirm",
    /* 184 */ "Warning! All custom extensions will be removed.",
    /* 185 */ "Remove custom extensions now?",
    /* 186 */ "Remove Custom Extensions",
    /* 187 */ "Please wait while the custom extensions are removed.",
    /* 188 */ "Custom extensions have been removed. Press <Enter> to restart your host.",
    /* 189 */ "Restore Network Factory Settings",
    /* 190 */ "This option will reset the host network configuration to its default setting.",
    /* 191 */ "Are you sure you want to reset the host network configuration?",
    /* 192 */ "Restore to default blocked setting (unblocked) ",
    /* 193 */ "Select fabric uplinks",
    /* 194 */ "Please enter a valid VLAN ID (1-4094).",
    /* 195 */ "Restore fabric",
    /* 196 */
    "Enter the properties for new fabric host local port that will be created.\nAll other "
    "properties will be taken as default.",
    /* 197 */ "Restore fabric: Error",
    /* 198 */ "Unable to restore fabric. Check logs for details.",
    /* 199 */
    "Unable to restore fabric. Restore fabric operation cannot be performed on 3rd party fabric.",
    /* 200 */ "fabric Uplinks",
    /* 201 */ "Select the fabric Uplinks (one or more) to be used by management tesselnic",
    /* 202 */ "fabric Uplinks: Warning",
    /* 203 */ "No uplinks were selected.",
    /* 204 */ "Do you want to continue?",
    /* 205 */ "No fabric Uplinks: Error",
    /* 206 */ "No uplinks are configured on the host for this fabric.",
    /* 207 */ "Restore Network Settings",
    /* 208 */ "Please wait while the factory network settings are restored.",
    /* 209 */ "Powering Off VMs.",
    /* 210 */ "Auto-configuring network.",
    /* 211 */ "Configure Management Network: Confirm",
    /* 212 */
    "You have made changes to the host's management network.\nApplying these changes may result in "
    "a brief network outage, disconnect remote management software and affect running virtual "
    "machines. In case IPv6 has been enabled or disabled this will restart your host.",
    /* 213 */ "Apply changes and restart management network?",
    /* 214 */ "Apply changes and reboot host?",
    /* 215 */ "Test Management Network",
    /* 216 */
    "By default, this test will attempt to ping your default gateway and DNS servers, and resolve "
    "your hostname.",
    /* 217 */ "Ping Address",
    /* 218 */ "Resolve Hostname",
    /* 219 */ "Testing Management Network",
    /* 220 */ "You may interrupt the test at any time.",
    /* 221 */ "Pinging address",
    /* 222 */ "Resolving hostname",
    /* 223 */ "Failed.",
    /* 224 */ "OK.",
    /* 225 */ "Troubleshooting Mode Options",
    /* 226 */ "Enable Ostra Shell",
    /* 227 */ "Disable Ostra Shell",
    /* 228 */ "Enable SSH",
    /* 229 */ "Disable SSH",
    /* 230 */ "Ostra Shell",
    /* 231 */ "SSH Support",
    /* 232 */ "Modify Ostra Shell and SSH timeouts",
    /* 233 */ "Modify LANYX idle timeout",
    /* 234 */ "Restart Management Agents",
    /* 235 */ "Change current state of the Ostra Shell",
    /* 236 */ "Change current state of SSH",
    /* 237 */ "Ostra Shell is Enabled",
    /* 238 */ "Ostra Shell is Disabled",
    /* 239 */ "SSH is Enabled",
    /* 240 */ "SSH is Disabled",
    /* 241 */
    "The management agents are the programs that allow remote management software to monitor and "
    "control this host.\n\nRestarting the management agents will disconnect all remote management "
    "software and will affect all running services.",
    /* 242 */
    "Modify the number of minutes that can elapse before you must log in after Ostra Shell access "
    "is enabled and the idle timeout for interactive sessions.",
    /* 243 */
    "Modify the number of idle minutes that can elapse before you must log in again in LANYX.",
    /* 244 */ "Restart Management Agents: Confirm",
    /* 245 */
    "{color:red}Warning! Restarting the management agents will disconnect all remote management "
    "software. This will affect all running services.\nCollection of extra troubleshooting "
    "information can take a noticeable amount of time.{/color}",
    /* 246 */ "Restart management agents now?",
    /* 247 */ "Stopping management agents.",
    /* 248 */ "Starting management agents.",
    /* 249 */ "Collect extra troubleshooting information",
    /* 250 */ "Collecting host agent live core information.",
    /* 251 */ "Please, wait ...",
    /* 252 */ "Configure Lockdown Mode",
    /* 253 */ "When enabled, lockdown mode prevents users from logging directly into this host.",
    /* 254 */ "Enable lockdown mode",
    /* 255 */
    "If you are having difficulty using your keyboard, choose a layout that matches your keyboard "
    "from the options below.",
    /* 256 */ "Enable IPv6: Restart Required",
    /* 257 */ "This host must be restarted before IPv6 will be enabled.",
    /* 258 */ "Disable IPv6: Restart Required",
    /* 259 */ "This host must be restarted before IPv6 will be disabled.",
    /* 260 */ "Router advertised",
    /* 261 */ "DHCP",
    /* 262 */ "STATIC",
    /* 263 */ "AUTOCONF",
    /* 264 */ "Waiting for DHCP...",
    /* 265 */ "Set the timeouts for Ostra Shell access (local and remote)",
    /* 266 */
    "Set the number of minutes that can elapse before you must log in after Ostra Shell is enabled "
    "(the availability timeout) and the timeout for idle interactive sessions.\n\nAfter the "
    "availability timeout expires any running shell instances will remain, but new sessions will "
    "not be allowed.  Changes to idle timeout will apply on next login, but will not affect any "
    "existing sessions.\n\nValues are in minutes. Use zero to disable timeouts. Maximum value is "
    "1440 minutes.",
    /* 267 */ "Availability timeout",
    /* 268 */ "Idle timeout",
    /* 269 */ "Invalid timeout value",
    /* 270 */ "Timeout value must be between 0 (disabled) and 1440 minutes",
    /* 271 */ "Set idle timeout for LANYX access",
    /* 272 */
    "Set the number of idle minutes that can elapse before you must log in again in "
    "LANYX.\n\nValue is in minutes. Use zero to disable the timeout. Maximum value is 1440 "
    "minutes.",
    /* 273 */ "LANYX idle timeout",
    /* 274 */ "Operation Failed",
    /* 275 */ "Operation Succeeded",
    /* 276 */ "Operation Cancelled",
    /* 277 */
    "Enter the properties for the new port group that will be created.\nAll other properties will "
    "be taken as default.",
    /* 278 */ "Please check the syslog for more information.",
    /* 279 */ "Invalid Argument",
    /* 280 */ "Please enter a valid port group name.",
    /* 281 */ "Standard Switch Details",
    /* 282 */ "Switch Name: ",
    /* 283 */ "Successfully created portgroup: ",
    /* 284 */ "Portgroup Name: ",
    /* 285 */ "Uplink is already in use",
    /* 286 */ "Please enter a valid standard switch name.",
    /* 287 */ "Successfully created standard virtual switch: ",
    /* 288 */
    "Enter the properties for new standard xbar that will be created.\nAll other properties will "
    "be taken as default.",
    /* 289 */ "Please choose which Tessel NIC should be migrated to which portgroup/switch.",
};

} // namespace Lanyx
