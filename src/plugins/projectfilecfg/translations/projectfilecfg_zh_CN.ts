<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>EngineerPropertySettingWidget</name>
    <message>
        <source>project attribute</source>
        <translation>项目属性</translation>
    </message>
    <message>
        <source>Project name</source>
        <translation>项目名称</translation>
    </message>
    <message>
        <source>Commect</source>
        <translation>备注</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Remind</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>The current file already exists</source>
        <translation>该项目文件已存在</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::EngineerDocBackup</name>
    <message>
        <source>Saving the gallery [%1]...</source>
        <translation>正在保存图库 [%1]...</translation>
    </message>
    <message>
        <source>BKG:</source>
        <translation>背景：</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::EngineerDocLoad</name>
    <message>
        <source>read device infomation [%1] failed,reason:%2</source>
        <translation>读取设备信息 [%1] 失败，原因：%2</translation>
    </message>
    <message>
        <source>Send Config to Device</source>
        <translation>正在向设备发送配置</translation>
    </message>
    <message>
        <source>LOGO:</source>
        <translation>LOGO：</translation>
    </message>
    <message>
        <source>BKG:</source>
        <translation>背景：</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::EngineerDocOperWidget</name>
    <message>
        <source>Device</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>保存项目</translation>
    </message>
    <message>
        <source>Import Project</source>
        <translation>导入项目</translation>
    </message>
    <message>
        <source>Apply Others</source>
        <translation>应用外部项目</translation>
    </message>
    <message>
        <source>ALL Save as</source>
        <translation>全部另存为</translation>
    </message>
    <message>
        <source>All Delete</source>
        <translation>全部删除</translation>
    </message>
    <message>
        <source>Project file</source>
        <translation>项目文件</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>备注</translation>
    </message>
    <message>
        <source>Operations</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Sync device data , please wait.</source>
        <translation>正在同步设备数据，请稍候。</translation>
    </message>
    <message>
        <source>Restore factory,please wait...</source>
        <translation>正在恢复出厂设置，请稍候...</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>项目</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Please select a device.</source>
        <translation>请选择设备。</translation>
    </message>
    <message>
        <source>Failed to get device information</source>
        <translation>获取设备信息失败</translation>
    </message>
    <message>
        <source>Insufficient default path space to perform current operation</source>
        <translation>项目文件所在磁盘空间不足，无法执行当前操作</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Please wait while the project file is exported</source>
        <translation>正在导出项目文件，请稍候</translation>
    </message>
    <message>
        <source>Failed to export bkg</source>
        <translation>导出背景图片失败</translation>
    </message>
    <message>
        <source>Failed to export logo</source>
        <translation>导出 LOGO 图片失败</translation>
    </message>
    <message>
        <source>Offline device resource file is incomplete</source>
        <translation>离线设备的资源文件不完整</translation>
    </message>
    <message>
        <source>User cancels current operation</source>
        <translation>用户已取消当前操作</translation>
    </message>
    <message>
        <source>Failed to encrypt file</source>
        <translation>打包项目文件失败</translation>
    </message>
    <message>
        <source>Failed to save json file</source>
        <translation>保存 JSON 文件失败</translation>
    </message>
    <message>
        <source>Remind</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>The file does not exist.</source>
        <translation>文件不存在。</translation>
    </message>
    <message>
        <source>The file does not exist or the file format is incorrect.</source>
        <translation>文件不存在或文件格式不正确。</translation>
    </message>
    <message>
        <source>Whether the current configuration needs to be backed up before the project file is imported?</source>
        <translation>应用项目文件前，是否先备份当前配置？</translation>
    </message>
    <message>
        <source> Restore factory failed </source>
        <translation> 恢复出厂设置失败 </translation>
    </message>
    <message>
        <source>Start save project file</source>
        <translation>开始应用项目文件</translation>
    </message>
    <message>
        <source>Incorrect file content</source>
        <translation>文件内容不正确</translation>
    </message>
    <message>
        <source>Input or output card mismatch</source>
        <translation>输入卡或输出卡不匹配</translation>
    </message>
    <message>
        <source>Hardware version mismatch</source>
        <translation>硬件版本不匹配</translation>
    </message>
    <message>
        <source>Failed to decompress file</source>
        <translation>解压项目文件失败</translation>
    </message>
    <message>
        <source>Project file import failed</source>
        <translation>应用项目文件失败</translation>
    </message>
    <message>
        <source>Incorrect JSON file</source>
        <translation>JSON 文件不正确</translation>
    </message>
    <message>
        <source>Device type mismatch</source>
        <translation>设备类型不匹配</translation>
    </message>
    <message>
        <source>Protocol version mismatch</source>
        <translation>协议版本不匹配</translation>
    </message>
    <message>
        <source>apply gallery failed</source>
        <translation>应用图库失败</translation>
    </message>
    <message>
        <source>Incorrect gallery file.</source>
        <translation>图库文件不正确。</translation>
    </message>
    <message>
        <source>save as project file,please wait...</source>
        <translation>正在另存项目文件，请稍候...</translation>
    </message>
    <message>
        <source>save as [%1] failed</source>
        <translation>另存 [%1] 失败</translation>
    </message>
    <message>
        <source>save as success</source>
        <translation>另存成功</translation>
    </message>
    <message>
        <source>The file[%1] context is invalid.</source>
        <translation>文件[%1]的内容无效。</translation>
    </message>
    <message>
        <source>Import project file [%1] failed</source>
        <translation>导入项目文件 [%1] 失败</translation>
    </message>
    <message>
        <source>Import as success</source>
        <translation>导入成功</translation>
    </message>
    <message>
        <source>file</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>Not enough space to import all selected files.</source>
        <translation>空间不足，无法导入所有选中的文件。</translation>
    </message>
    <message>
        <source>Import project files,please wait...</source>
        <translation>正在导入项目文件，请稍候...</translation>
    </message>
    <message>
        <source>choose Des Directory</source>
        <translation>选择目标目录</translation>
    </message>
    <message>
        <source>Project File [%1] already exist. Please change file name and try again</source>
        <translation>项目文件 [%1] 已存在，请更改文件名后重试</translation>
    </message>
    <message>
        <source>Cannot save the file because there is not enough storage available.</source>
        <translation>可用存储空间不足，无法保存文件。</translation>
    </message>
    <message>
        <source>Confirm to delete the selected project file?</source>
        <translation>确定要删除该项目文件吗？</translation>
    </message>
    <message>
        <source>Delete project file failed!</source>
        <translation>删除项目文件失败！</translation>
    </message>
    <message>
        <source>Confirm to delete all project file?</source>
        <translation>确定要删除所有项目文件吗？</translation>
    </message>
    <message>
        <source>File rename failed</source>
        <translation>文件重命名失败</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::ProjectFileCfgMode</name>
    <message>
        <source>Project File</source>
        <translation>项目文件</translation>
    </message>
    <message>
        <source>Switch to project file module</source>
        <translation>切换到项目文件模块</translation>
    </message>
</context>
<context>
    <name>UDiskSelectWidget</name>
    <message>
        <source>Please select the destination U disk</source>
        <translation>请选择目标 U 盘</translation>
    </message>
</context>
</TS>
