<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>Core::CenterArea</name>
    <message>
        <source>Choose an entry at the left.</source>
        <translation>请从左侧选择一项。</translation>
    </message>
</context>
<context>
    <name>Core::DeviceBar</name>
    <message>
        <source>No devices. Plug one in to begin.</source>
        <translation>没有设备。请先接入一台设备。</translation>
    </message>
</context>
<context>
    <name>Core::DeviceCard</name>
    <message>
        <source>Online</source>
        <translation>在线</translation>
    </message>
    <message>
        <source>Offline</source>
        <translation>离线</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>当前</translation>
    </message>
</context>
<context>
    <name>Core::DevicesMode</name>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
</context>
<context>
    <name>Core::DevicesWidget</name>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>型号</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>地址</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>序列号</translation>
    </message>
    <message>
        <source>Cards</source>
        <translation>板卡</translation>
    </message>
    <message>
        <source>Screens</source>
        <translation>屏幕</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>图片</translation>
    </message>
    <message>
        <source>Presets</source>
        <translation>预设</translation>
    </message>
    <message>
        <source>Online</source>
        <translation>在线</translation>
    </message>
    <message>
        <source>Offline</source>
        <translation>离线</translation>
    </message>
    <message>
        <source>%1, active</source>
        <translation>%1，当前</translation>
    </message>
</context>
<context>
    <name>Core::MainWindow</name>
    <message>
        <source>Tarvo – development host</source>
        <translation>Tarvo – 开发宿主</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>日志</translation>
    </message>
    <message>
        <source>Writing to the device</source>
        <translation>正在写入设备</translation>
    </message>
    <message>
        <source>Reading from the device</source>
        <translation>正在读取设备</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>就绪</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>视图(&amp;V)</translation>
    </message>
    <message>
        <source>View</source>
        <translation>视图</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>最小化</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>最大化</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>还原</translation>
    </message>
    <message>
        <source>Close %1</source>
        <translation>关闭%1</translation>
    </message>
</context>
<context>
    <name>Core::OperationReport</name>
    <message>
        <source>Saved &quot;%1&quot;</source>
        <translation>已保存“%1”</translation>
    </message>
    <message>
        <source>Project files written: %1</source>
        <translation>已写入的项目文件：%1</translation>
    </message>
    <message>
        <source>Ended without a new project file of &quot;%1&quot;</source>
        <translation>已结束，未生成“%1”的项目文件</translation>
    </message>
    <message>
        <source>Applied to &quot;%1&quot;</source>
        <translation>已应用到“%1”</translation>
    </message>
    <message>
        <source>Ended without writing the configuration of &quot;%1&quot;</source>
        <translation>已结束，未写入“%1”的配置</translation>
    </message>
    <message>
        <source>Ended with the message: %1</source>
        <translation>操作结束，提示：%1</translation>
    </message>
</context>
<context>
    <name>Corvel::Widgets::WaitingDialog</name>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Stopping, please wait...</source>
        <translation>正在停止，请稍候……</translation>
    </message>
</context>
<context>
    <name>HX::Widgets::FramelessDialog</name>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>HX::Widgets::FramelessMessageBox</name>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>重试</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>询问</translation>
    </message>
</context>
<context>
    <name>HX::Widgets::TitleBar</name>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>ModelControl::DeviceControler</name>
    <message>
        <source>The device did not answer.</source>
        <translation>设备没有响应。</translation>
    </message>
</context>
<context>
    <name>Program</name>
    <message>
        <source>%1 is not a project file.</source>
        <translation>%1 不是项目文件。</translation>
    </message>
    <message>
        <source>The folder %1 cannot be created.</source>
        <translation>无法创建文件夹 %1。</translation>
    </message>
    <message>
        <source>There are no plugins in %1.</source>
        <translation>%1 中没有插件。</translation>
    </message>
</context>
<context>
    <name>SettingCfg::GeneralMode</name>
    <message>
        <source>General</source>
        <translation>常规</translation>
    </message>
    <message>
        <source>Settings of the program itself</source>
        <translation>程序自身的设置</translation>
    </message>
</context>
<context>
    <name>SettingCfg::GeneralWidget</name>
    <message>
        <source>General</source>
        <translation>常规</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Device configurations</source>
        <translation>设备配置</translation>
    </message>
    <message>
        <source>Extracted packages</source>
        <translation>解压目录</translation>
    </message>
</context>
<context>
    <name>SettingCfg::SettingsMode</name>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>SiteDock</name>
    <message>
        <source>Simulated site</source>
        <translation>模拟现场</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>地址</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Next fault</source>
        <translation>下一个故障</translation>
    </message>
    <message>
        <source>Fails</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Answers %1 s late</source>
        <translation>延迟 %1 秒响应</translation>
    </message>
    <message>
        <source>Drops the connection</source>
        <translation>断开连接</translation>
    </message>
    <message>
        <source>Is cancelled</source>
        <translation>被取消</translation>
    </message>
    <message>
        <source>at call</source>
        <translation>第几次调用</translation>
    </message>
    <message>
        <source>Arm</source>
        <translation>启用</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>清除</translation>
    </message>
    <message>
        <source>Pictures in the hardware</source>
        <translation>硬件中的图片</translation>
    </message>
    <message>
        <source>plugged in</source>
        <translation>已接入</translation>
    </message>
    <message>
        <source>unplugged</source>
        <translation>已断开</translation>
    </message>
    <message>
        <source>Unplug</source>
        <translation>断开</translation>
    </message>
    <message>
        <source>Plug in</source>
        <translation>接入</translation>
    </message>
    <message>
        <source>No fault is armed</source>
        <translation>未启用故障</translation>
    </message>
    <message>
        <source>Faults armed: %1</source>
        <translation>已启用故障：%1</translation>
    </message>
    <message>
        <source>Devices of the site</source>
        <translation>现场设备</translation>
    </message>
    <message>
        <source>Kind of fault</source>
        <translation>故障类型</translation>
    </message>
</context>
</TS>
